#include "FennickCore/Storage/PhotoExport.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;
using Operation = test::FaultyFileSystem::Operation;

class PhotoExportTest : public ::testing::Test {
protected:
  PhotoExportTest() {
    decoder.setFacts(photo());
    decoder.setRendering(Rendering{.bytes = "encoded", .longEdge = 2048, .quality = 0.8});
  }
  static PictureFacts photo(PictureType type = PictureType::jpeg) {
    return {.type = type,
            .frames = 1,
            .width = 3000,
            .height = 4000,
            .orientation = 1,
            .hasLocation = true,
            .hasMetadata = true};
  }
  // Returns the name and the content of the copy, or the message for the user.
  std::string exported(const fs::path &source) {
    const auto result = PhotoExport::exportFile(source, disk / "export", options, Seconds(90),
                                                {.decoder = decoder, .files = files});
    if (!result)
      return ImagePipeline::description(result.error());
    latest = *result;
    return result->file.filename().string() + ": " + readFile(result->file).value();
  }

  test::TemporaryFolder disk;
  test::FaultyFileSystem files;
  test::FakeDecoder decoder;
  ImagingOptions options{.maxPixels = 2048};
  PhotoExport::Exported latest;
};

TEST_F(PhotoExportTest, EncodesWithTheOriginalsTimeAndOverwritesNothing) {
  const fs::path photo = disk.write("photos/a.jpg", "original");
  ASSERT_TRUE(setModificationTime(photo, Instant(std::chrono::seconds(1'700'000'000))));
  ASSERT_TRUE(setPermissions(photo, 0640));
  EXPECT_EQ(exported(photo), "a.jpeg: encoded");
  EXPECT_EQ(exported(photo), "a_2.jpeg: encoded");
  EXPECT_FALSE(latest.copied);
  EXPECT_EQ(fileStatus(latest.file)->modified, fileStatus(photo)->modified);
  EXPECT_EQ(fileStatus(latest.file)->permissions, 0640U);
  EXPECT_EQ(disk.read("photos/a.jpg"), "original");
  EXPECT_EQ(decoder.request().longEdge, 2048);
  options = {.format = OutputFormat::heic};
  EXPECT_EQ(exported(photo), "a.heic: encoded");
  decoder.encodesHEIC = false;
  EXPECT_EQ(exported(photo), "a.jpg: original") << "it is JPEG already";
}

TEST_F(PhotoExportTest, CopiesUnchangedFilesAndReportsKeptMetadata) {
  options = {.maxPixels = 4000};
  EXPECT_EQ(exported(disk.write("a.JPG", std::string(700'000, 'x'))), "a.JPG: " + std::string(700'000, 'x'));
  EXPECT_TRUE(latest.copied && !latest.keepsMetadata);
  options = {.stripLocation = true};
  auto animated = photo(PictureType::webp);
  animated.frames = 12;
  decoder.setFacts(animated);
  EXPECT_EQ(exported(disk.write("b.webp", "frames")), "b.webp: frames");
  EXPECT_TRUE(latest.keepsMetadata);
  animated.hasLocation = false;
  decoder.setFacts(animated);
  EXPECT_EQ(exported(disk.write("c.webp", "frames")), "c.webp: frames");
  EXPECT_FALSE(latest.keepsMetadata);
  const int asked = decoder.calls();
  EXPECT_EQ(exported(disk.write("d.mov", "film")), "d.mov: film");
  EXPECT_TRUE(latest.copied && latest.keepsMetadata);
  EXPECT_EQ(decoder.calls(), asked) << "a video is not looked into";
}

TEST_F(PhotoExportTest, LeavesNothingAfterAFailure) {
  const fs::path photo = disk.write("a.jpg", "original");
  const fs::path video = disk.write("b.mp4", "film");
  disk.makeFolder("export");
  for (const auto operation : {Operation::createDirectories, Operation::createFile, Operation::write,
                               Operation::sync, Operation::close, Operation::moveNoReplace})
    for (const auto &source : {photo, video}) {
      files.failNext(operation, ENOSPC);
      EXPECT_EQ(exported(source), "No space left on device") << static_cast<int>(operation);
      EXPECT_THAT(disk.names("export"), IsEmpty()) << static_cast<int>(operation);
    }
  decoder.setRendering(test::FakeDecoder::kFault(PictureFault::undecodable));
  EXPECT_EQ(exported(photo), "无法解码图片");
  decoder.setFacts(test::FakeDecoder::kFault(PictureFault::noDecoder));
  EXPECT_THAT(exported(photo), ::testing::HasSubstr("无法启动"));
  EXPECT_EQ(exported(disk / "gone.jpg"), "No such file or directory");
  EXPECT_THAT(disk.names("export"), IsEmpty());
}

TEST_F(PhotoExportTest, PredictsTheExport) {
  const fs::path source = disk.write("a.jpg", "original");
  auto outlook = PhotoExport::outlook(source, options, decoder);
  ASSERT_TRUE(outlook);
  EXPECT_EQ(outlook->longEdge, 4000);
  EXPECT_EQ(outlook->newLongEdge, 2048);
  EXPECT_EQ(outlook->bytes, 8);
  EXPECT_EQ(exported(source), outlook->name + ": encoded");
  options.maxPixels.reset();
  outlook = PhotoExport::outlook(source, options, decoder);
  EXPECT_TRUE(outlook->copied);
  EXPECT_EQ(outlook->newLongEdge, 4000);
  EXPECT_EQ(exported(source), outlook->name + ": original");
}

} // namespace
} // namespace fennick
