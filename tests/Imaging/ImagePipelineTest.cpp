#include "FennickCore/Imaging/ImagePipeline.h"

#include "FennickCore/Imaging/ProcessingPlan.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/KillAtEveryChange.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using Operation = test::FaultyFileSystem::Operation;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

PictureFacts photo(PictureType type = PictureType::jpeg) {
  return {.type = type,
          .frames = 1,
          .width = 4000,
          .height = 3000,
          .orientation = 1,
          .hasLocation = true,
          .hasMetadata = true};
}

// Returns the note, or the output with the longer side.
std::string planned(const PictureFacts &facts, const ImagingOptions &options, bool heic = true,
                    std::int64_t bytes = 3'000'000) {
  const auto plan = ImagePipeline::plan(facts, bytes, options, [&] { return heic; });
  if (const auto *leave = std::get_if<ImagePipeline::LeaveAlone>(&plan))
    return leave->note;
  if (const auto *encode = std::get_if<ImagePipeline::Encode>(&plan))
    return std::string(preferredExtension(encode->request.output)) + " " +
           std::to_string(encode->request.longEdge) +
           (encode->remarks.empty() ? "" : " " + encode->remarks[0]);
  return "undecodable";
}

TEST(ProcessingPlanTest, EncodesOnlyWhatMustChange) {
  constexpr const char *kNothing = "无需处理 / no change needed";
  EXPECT_EQ(planned(photo(), {}), kNothing);
  EXPECT_EQ(planned(photo(), {.maxPixels = 4000}), kNothing);
  EXPECT_EQ(planned(photo(), {.maxBytes = 3'000'000}), kNothing);
  EXPECT_EQ(planned(photo(), {.maxBytes = 2'999'999}), "jpeg 4000");
  EXPECT_EQ(planned(photo(), {.stripLocation = true}), "jpeg 4000");
  EXPECT_EQ(planned(photo(), {.stripAllMetadata = true}), "jpeg 4000");
  EXPECT_EQ(planned(photo(), {.maxPixels = 0, .maxBytes = -5}), kNothing) << "no limits at all";
  auto bare = photo();
  bare.hasLocation = bare.hasMetadata = false;
  bare.orientation = 6; // a rotation alone is no reason
  EXPECT_EQ(planned(bare, {.stripLocation = true, .stripAllMetadata = true}), kNothing);
  EXPECT_EQ(planned(photo(PictureType::heif), {}), kNothing);
}

TEST(ProcessingPlanTest, ChoosesTheFormatByOptionAndSupport) {
  EXPECT_EQ(planned(photo(PictureType::heic), {}, false), "jpeg 4000");
  EXPECT_EQ(planned(photo(), {.maxPixels = 100, .format = OutputFormat::heic}, false),
            "jpeg 100 本机不支持 HEIC 编码，改用 JPEG / HEIC unsupported, using JPEG");
  EXPECT_EQ(planned(photo(), {.format = OutputFormat::png}), "png 4000");
  auto wide = photo();
  wide.width = 30'000;
  wide.height = 100;
  EXPECT_EQ(planned(wide, {.maxPixels = 100}), "尺寸超限未处理 / oversized, not processed (30000×100)");
  wide.height.reset();
  EXPECT_EQ(planned(wide, {.maxPixels = 100}), "undecodable");
}

// Returns path and content of every complete file.
std::map<std::string, std::string> contentsOf(const fs::path &folder) {
  std::map<std::string, std::string> found;
  for (const auto &entry : fs::recursive_directory_iterator(folder))
    if (entry.is_regular_file() && entry.path().extension() != ".out")
      found.emplace(entry.path().lexically_relative(folder), readFile(entry.path()).value());
  return found;
}

class ImagePipelineTest : public testing::Test {
protected:
  ImagePipelineTest() {
    decoder.setFacts(photo());
    decoder.setRendering(Rendering{.bytes = "encoded", .longEdge = 2048, .quality = 0.77});
  }

  ProcessResult process() {
    return ImagePipeline::process(source, options, Seconds(90), {.decoder = decoder, .files = files});
  }

  test::TemporaryFolder folder;
  test::FaultyFileSystem files;
  test::FakeDecoder decoder;
  ImagingOptions options{.maxPixels = 2048};
  fs::path source = folder.write("a.jpg", "original");
};

TEST_F(ImagePipelineTest, KeepsTimeAndPermissionsOfTheFile) {
  const Instant received{std::chrono::seconds(1'700'000'000)};
  ASSERT_TRUE(setPermissions(source, 0640) && setModificationTime(source, received));
  folder.write("a.jpeg", "somebody else's");
  const auto result = process();
  EXPECT_EQ(result,
            (ProcessResult{
                .finalURL = folder / "a_2.jpeg", .processed = true, .note = "2048px · q77 · 7 字节 · JPEG"}));
  EXPECT_THAT(folder.names(), ElementsAre(".fennick-incoming", "a.jpeg", "a_2.jpeg"));
  EXPECT_THAT(folder.names(".fennick-incoming"), IsEmpty());
  const auto status = fileStatus(folder / "a_2.jpeg").value();
  EXPECT_EQ(status.modified, received);
  EXPECT_EQ(status.permissions, 0640U);
}

TEST_F(ImagePipelineTest, ReplacesAFileAtomicallyIfTheNameStays) {
  decoder.setFacts(photo(PictureType::png));
  source = folder.write("day/b.png", "original");
  folder.makeFolder(".fennick-incoming");
  options.keepOriginal = true;
  files.failNext(Operation::replace, ENOSPC);
  EXPECT_FALSE(process().processed);
  EXPECT_THAT(folder.names("day/originals"), IsEmpty()) << "the copy is removed again";
  fs::remove(folder / "day/originals");
  options.keepOriginal = false;
  EXPECT_EQ(process().finalURL, source);
  EXPECT_EQ(folder.read("day/b.png"), "encoded");
  EXPECT_THAT(folder.names("day"), ElementsAre("b.png")) << "the save folder's own work folder is used";
}

TEST_F(ImagePipelineTest, KeepsTheOriginalUnderAFreeNameEvenWithoutHardLinks) {
  options.keepOriginal = true;
  folder.write("originals/a.jpg", "an earlier one");
  EXPECT_EQ(process().originalURL, folder / "originals/a_2.jpg");
  source = folder.write("b.jpeg", "second");
  files.failAlways(Operation::link, EPERM);
  EXPECT_EQ(process().originalURL, folder / "originals/b.jpeg");
  EXPECT_THAT(contentsOf(folder.path()),
              ElementsAre(Pair("a.jpeg", "encoded"), Pair("b.jpeg", "encoded"),
                          Pair("originals/a.jpg", "an earlier one"), Pair("originals/a_2.jpg", "original"),
                          Pair("originals/b.jpeg", "second")));
}

TEST_F(ImagePipelineTest, LeavesThePhotoUnchangedWhateverFails) {
  folder.makeFolder(".fennick-incoming");
  for (const bool keep : {false, true})
    for (const auto operation : {Operation::createDirectories, Operation::createFile, Operation::write,
                                 Operation::sync, Operation::close, Operation::moveNoReplace}) {
      options.keepOriginal = keep;
      files.failNext(operation, ENOSPC);
      const auto result = process();
      EXPECT_EQ(result.finalURL, source);
      EXPECT_EQ(result.note, "未处理 / skipped: No space left on device") << static_cast<int>(operation);
      EXPECT_THAT(contentsOf(folder.path()), ElementsAre(Pair("a.jpg", "original")))
          << static_cast<int>(operation) << keep;
      EXPECT_THAT(folder.names(".fennick-incoming"), IsEmpty());
      files.mend(operation);
    }
}

TEST_F(ImagePipelineTest, KeepsAPhotoThatWasChangedMeanwhile) {
  decoder.before([&] {
    if (decoder.calls() == 2)
      folder.write("a.jpg", "edited meanwhile");
  });
  EXPECT_THAT(*process().note, StartsWith("未处理 / skipped: "));
  EXPECT_EQ(folder.read("a.jpg"), "edited meanwhile");
}

TEST_F(ImagePipelineTest, NotesEachFailureOfTheDecoder) {
  const std::vector<std::pair<PictureFault, std::string>> notes{
      {PictureFault::timedOut, "处理超时 timed out"},
      {PictureFault::busy, "图片处理程序正忙 / the picture processes are busy"},
      {PictureFault::crashed, "无法解码图片"},
      {PictureFault::stopped, "接收已结束，照片原样保存 / receiving has ended, the photo is kept as is"},
      {PictureFault::unencodable, "无法编码为 public.jpeg"},
      {PictureFault::unsupported, "不处理的类型 public.jpeg"}};
  for (const auto &[fault, note] : notes) {
    decoder.setRendering(test::FakeDecoder::kFault(fault));
    const auto result = process();
    EXPECT_EQ(result.finalURL, source);
    EXPECT_EQ(result.note, "未处理 / skipped: " + note);
  }
  decoder.setFacts(test::FakeDecoder::kFault(PictureFault::notAPicture));
  EXPECT_EQ(process().note, "非图片，原样保存 / not an image, kept as is");
  decoder.setRendering(Rendering{.bytes = "e", .longEdge = 640, .quality = 0.53, .withinMaxBytes = false});
  auto turned = photo(PictureType::tiff);
  turned.orientation = 8;
  decoder.setFacts(turned);
  EXPECT_THAT(
      *process().note,
      EndsWith("JPEG · 已转正 / rotated · tiff → JPEG；原图在 originals 文件夹 / original kept in originals；"
               "已到最小尺寸/质量，仍超出体积上限 / at minimum, still over the size limit"));
}

// The result after processing was interrupted and completed: the photo's name, and the folder of the
// original, if any.
struct InterruptedCase {
  std::string name;
  PictureType type;
  std::string photo;
  std::string originalIn = {};
  bool keepOriginal = false;
  bool hasLinks = true;
  bool hasTrash = true;
};

// The trash, the journal and the photos of one disk, whose program may crash at any change and start again.
class InterruptedDisk : public ImagePipeline::CommitJournal, public Trash {
public:
  explicit InterruptedDisk(const InterruptedCase &row) : row_(row) {
    decoder_.setRendering(Rendering{.bytes = "encoded", .longEdge = 2048, .quality = 0.77});
  }
  void run(test::FaultyFileSystem &files) {
    files_ = &files;
    if (!row_.hasLinks)
      files.failAlways(Operation::link, EPERM);
    const ImagePipeline::Services services{decoder_, files, this, this};
    if (target_ && ImagePipeline::wasPlaced(output_, *target_))
      EXPECT_TRUE(ImagePipeline::completeCommit(source_, *target_, options_, services) || files.died());
    else
      std::ignore = ImagePipeline::process(source_, options_, Seconds(90), services);
  }
  IOResult<void> willPlace(const fs::path &, const fs::path &output, const fs::path &target) override {
    auto recorded = files_->syncDirectory(folder_.path());
    if (recorded)
      std::tie(output_, target_) = std::pair(output, target);
    return recorded;
  }
  void didNotPlace(const fs::path &) override {
    if (files_->syncDirectory(folder_.path()))
      target_.reset();
  }
  IOResult<Trashed> moveToTrash(const fs::path &file) override {
    if (!row_.hasTrash)
      return std::unexpected(std::make_error_code(std::errc::not_supported));
    const auto moved = files_->moveNoReplace(file, folder_ / "trash" / file.filename());
    return moved ? IOResult<Trashed>(Trashed{}) : std::unexpected(moved.error());
  }
  [[nodiscard]] auto contents() const { return contentsOf(folder_.path()); }

private:
  class Decoder : public test::FakeDecoder {
  public:
    explicit Decoder(PictureType type) : type_(type) {}
    PictureResult<PictureFacts> facts(const fs::path &file) override {
      return photo(readFile(file) == "encoded" ? PictureType::jpeg : type_);
    }

  private:
    const PictureType type_;
  };

  const InterruptedCase &row_;
  test::TemporaryFolder folder_;
  fs::path trash_ = folder_.makeFolder("trash");
  fs::path source_ = folder_.write(row_.name, "original");
  ImagingOptions options_{.maxPixels = 2048, .keepOriginal = row_.keepOriginal};
  Decoder decoder_{row_.type};
  test::FaultyFileSystem *files_ = nullptr;
  fs::path output_;
  std::optional<fs::path> target_;
};

TEST(InterruptedCommitTest, LeavesOnePhotoAndOneOriginalAfterRepeatedCrashes) {
  using enum PictureType;
  for (const InterruptedCase &row :
       std::vector<InterruptedCase>{{"a.png", png, "a.png"},
                                    {"a.png", png, "a.png", "originals", true},
                                    {"a.png", png, "a.png", "originals", true, false},
                                    {"a.jpg", jpeg, "a.jpeg"},
                                    {"a.jpg", jpeg, "a.jpeg", "originals", true, false},
                                    {"a.webp", webp, "a.jpeg", "trash"},
                                    {"a.webp", webp, "a.jpeg", "originals", false, true, false},
                                    {"a.jpeg", webp, "a.jpeg", "originals"}}) {
    SCOPED_TRACE(row.name + " to " + row.photo + ", original in \"" + row.originalIn + '"');
    std::map<std::string, std::string> expected{{row.photo, "encoded"}};
    if (!row.originalIn.empty())
      expected.emplace(row.originalIn + "/" + row.name, "original");
    test::killAtEveryChange([&](test::FaultyFileSystem &files) {
      InterruptedDisk disk(row);
      disk.run(files);
      for (int change = files.died() ? 1 : 1000; change <= 1000; ++change) {
        const auto found = disk.contents();
        EXPECT_TRUE(found.contains(row.name) || found.contains(row.photo));
        test::FaultyFileSystem next;
        next.dieAt(change);
        disk.run(next);
        if (!next.died())
          break;
      }
      EXPECT_EQ(disk.contents(), expected);
    });
  }
}

} // namespace
} // namespace fennick
