#include "FennickCore/Storage/FolderPruner.h"
#include "FennickCore/Storage/Leftovers.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/System/Random.h"
#include "FennickCore/Storage/BatchRename.h"
#include "FennickCore/Storage/PhotoExport.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/PhotoOrder.h"
#include "FennickCore/Storage/PhotoRotation.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/KillAtEveryChange.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <optional>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::AnyOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

const auto kNever = [] { return false; };

TEST(LeftoversTest, RecoversPhotosAfterACrashAtAnyStep) {
  struct Row {
    const char *name;
    std::function<void(const fs::path &folder, FileSystem &files)> act;
  };
  test::FakeDecoder decoder;
  decoder.setRendering(Rendering{.bytes = "encoded"});
  const std::string longName = std::string(250, 'x') + ".jpg";
  const std::vector<Row> rows{
      {"rotate",
       [&](const fs::path &folder, FileSystem &files) {
         std::ignore =
             PhotoFileOps::rotate(folder / "day/2.jpg", PhotoFileOps::QuarterTurn::clockwise, decoder, files);
       }},
      {"rename",
       [](const fs::path &folder, FileSystem &files) {
         std::ignore = PhotoFileOps::rename(folder / "1.jpg", "new", files);
       }},
      {"exchange names",
       [&](const fs::path &folder, FileSystem &files) {
         const std::vector selection{folder / "3.jpg", folder / "1.jpg", folder / longName,
                                     folder / "day/2.jpg"};
         std::ignore = PhotoFileOps::batchRename(selection, {.prefix = "", .digits = 1}, files);
       }},
      {"export",
       [&](const fs::path &folder, FileSystem &files) {
         for (const std::int64_t pixels : {10, 100}) // an encoding and a copy
           std::ignore = PhotoExport::exportFile(folder / "1.jpg", folder / "export", {.maxPixels = pixels},
                                                 Seconds(90), {.decoder = decoder, .files = files});
       }},
      {"reorder",
       [](const fs::path &folder, FileSystem &files) {
         for (const auto &order : {PhotoOrder::Names{"3.jpg", "1.jpg"}, PhotoOrder::Names{}})
           std::ignore = PhotoOrder::save(order, folder, files);
       }},
  };
  for (const auto &row : rows)
    test::killAtEveryChange([&](FileSystem &files) {
      SCOPED_TRACE(row.name);
      const test::TemporaryFolder disk;
      for (const auto &name :
           {std::string("1.jpg"), std::string("3.jpg"), longName, std::string("day/2.jpg")})
        disk.write(name, name);
      row.act(disk.path(), files);
      SystemFileSystem system;
      clearSaveFolder(disk.path(), system, kNever);
      std::vector<std::string> photos;
      for (const auto &entry : fs::recursive_directory_iterator(disk.path())) {
        const std::string name = entry.path().filename();
        EXPECT_TRUE(name == ".fennick-order.json" || !name.starts_with('.')) << name;
        EXPECT_FALSE(isUUID(std::string_view(name).substr(0, 36))) << name;
        if (entry.is_regular_file() && countsAsMedia(name, FileKind::regular) &&
            entry.path().parent_path() != disk / "export")
          photos.push_back(readFile(entry.path()).value());
      }
      EXPECT_THAT(photos, UnorderedElementsAre("1.jpg", "3.jpg", longName, AnyOf("day/2.jpg", "turned 6")));
    });
}

class LeftoversIn : public ::testing::Test {
protected:
  void clear() { clearSaveFolder(disk.path(), files, kNever); }

  test::TemporaryFolder disk;
  SystemFileSystem files;
  const std::string uuid = "0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9";
};

TEST_F(LeftoversIn, ClearsOnlyOurOwnTemporaryNames) {
  const std::vector<std::string> kept{".rotate-mine.tmp",
                                      ".rotate-" + uuid + ".tmp.jpg",
                                      ".ROTATE-" + uuid + ".tmp",
                                      ".export-" + uuid + ".tmp",
                                      "." + uuid + ".tmp",
                                      uuid,
                                      uuid + ".jpg",
                                      uuid + "-",
                                      uuid + "-notes.txt",
                                      "0a1b2c3d-4e5f-4071-8293-a4b5c6d7e8f9-a.jpg",
                                      "a.jpg"};
  for (const auto &name : kept)
    disk.write(name, "kept");
  disk.makeFolder(".rotate-" + uuid + ".tmp");
  fs::create_symlink(disk / "a.jpg", disk / (".export-" + uuid + ".part"));
  fs::create_symlink(disk / "a.jpg", disk / (uuid + "-link.jpg"));
  disk.write("originals/.rotate-" + uuid + ".tmp");
  disk.write("1/2/3/.rotate-" + uuid + ".tmp");
  auto expected = disk.names();
  for (const std::string folder : {"", "1/", "1/2/", "export/"})
    for (const auto &name :
         {".rotate-" + uuid + ".tmp", ".fennick-order.json." + uuid + ".tmp", ".export-" + uuid + ".part"})
      if (!fs::exists(fs::symlink_status(disk / (folder + name))))
        disk.write(folder + name);
  disk.write(uuid + "-a.jpg", "restored");
  disk.write(uuid + "-..hidden.jpg", "shown");
  clear();
  expected.insert(expected.end(), {"a_2.jpg", "export", "hidden.jpg"});
  std::ranges::sort(expected);
  EXPECT_EQ(disk.names(), expected);
  EXPECT_THAT(disk.names("1/2"), ElementsAre("3"));
  EXPECT_THAT(disk.names("export"), ElementsAre());
  EXPECT_EQ(disk.names("originals").size() + disk.names("1/2/3").size(), 2U);
  EXPECT_EQ(disk.read("a.jpg") + disk.read("a_2.jpg"), "keptrestored");
}

// During each action, checks whether another start would clear its files.
TEST_F(LeftoversIn, ClearsNothingInAFolderInUse) {
  const fs::path one = disk.write("1.jpg", "one");
  test::FakeDecoder decoder;
  test::FaultyFileSystem faulty;
  faulty.before(test::FaultyFileSystem::Operation::replace, [this] { clear(); });
  EXPECT_TRUE(PhotoFileOps::rotate(one, PhotoFileOps::QuarterTurn::clockwise, decoder, faulty));
  EXPECT_TRUE(PhotoOrder::edit(disk.path(), [](const auto &) { return PhotoOrder::Names{"1.jpg"}; }, faulty));
  faulty.before(test::FaultyFileSystem::Operation::moveNoReplace, [this] { clear(); });
  EXPECT_TRUE(PhotoFileOps::batchRename(std::vector{one}, {.prefix = "x", .digits = 1}, faulty));
  EXPECT_TRUE(PhotoExport::exportFile(disk / "x1.jpg", disk / "export", {}, Seconds(90),
                                      {.decoder = decoder, .files = faulty}));
  EXPECT_THAT(disk.names(), ElementsAre(".fennick-order.json", "export", "x1.jpg"));
  EXPECT_THAT(disk.names("export"), ElementsAre("x1.jpg"));
}

TEST_F(LeftoversIn, ClearsOnlyTemporaryThumbnails) {
  disk.write("." + uuid + ".tmp");
  disk.write("a-1-2-400.jpg");
  auto use = std::optional<FolderUse>(disk.path());
  clearThumbnailLeftovers(disk.path(), files);
  EXPECT_EQ(disk.names().size(), 2U);
  use.reset();
  clearThumbnailLeftovers(disk.path(), files);
  EXPECT_THAT(disk.names(), ElementsAre("a-1-2-400.jpg"));
}

class FolderTrash final : public Trash {
public:
  IOResult<Trashed> moveToTrash(const fs::path &file) override {
    if (file.filename() == refused)
      return std::unexpected(std::make_error_code(std::errc::not_supported));
    fs::remove(file);
    if (before)
      before();
    return Trashed{};
  }
  std::string refused;
  std::function<void()> before; // the next file
};

class FolderPrunerTest : public ::testing::Test {
protected:
  void write(const std::string &name, int second) {
    const auto file = disk.write(name);
    ASSERT_TRUE(setModificationTime(file, Instant(std::chrono::seconds(second))));
  }
  std::vector<fs::path> prune(std::int64_t limit) { return FolderPruner::prune(disk.path(), limit, trash); }

  test::TemporaryFolder disk;
  FolderTrash trash;
};

TEST_F(FolderPrunerTest, PrunesTheOldestPhotosAndVideosOnly) {
  for (int i = 0; i < 12; ++i)
    write(fmt::format("{:02}.{}", i, i % 2 == 0 ? "jpg" : "MOV"), 100 - i);
  for (const char *other : {"a.txt", "b.txt", ".hidden.jpg", "sub/c.jpg"})
    write(other, 1);
  fs::create_symlink(disk / "00.jpg", disk / "link.jpg");
  fs::create_directory(disk / "folder.jpg");
  for (const std::int64_t limit : {0L, -1L, 12L, INT64_MAX})
    EXPECT_THAT(prune(limit), IsEmpty()) << limit;
  EXPECT_THAT(prune(10), ElementsAre(disk / "11.MOV", disk / "10.jpg"));
  EXPECT_THAT(prune(10), IsEmpty());
  EXPECT_EQ(disk.names().size(), 16U) << "ten of twelve, three files, two folders, a link";
  EXPECT_THAT(FolderPruner::prune(disk / "gone", 1, trash), IsEmpty());
}

TEST_F(FolderPrunerTest, KeepsWhatTheTrashRefusesWithoutASubstitute) {
  write("a.jpg", 1), write("b.jpg", 2), write("c.jpg", 3);
  trash.refused = "a.jpg";
  EXPECT_THAT(prune(1), ElementsAre(disk / "b.jpg"));
  EXPECT_THAT(disk.names(), ElementsAre("a.jpg", "c.jpg"));
}

TEST_F(FolderPrunerTest, KeepsReplacedPhotosAndStopsWhenAsked) {
  for (const char *name : {"a.jpg", "a_9.jpg", "a_10.jpg", "b.jpg"})
    write(name, 1); // a file system that counts in seconds
  trash.before = [&] { write("new", 9), fs::rename(disk / "new", disk / "a_9.jpg"); };
  EXPECT_THAT(prune(1), ElementsAre(disk / "a.jpg", disk / "b.jpg"));
  write("c.jpg", 10);
  int files = 0;
  EXPECT_THAT(FolderPruner::prune(disk.path(), 1, trash, [&] { return ++files == 1; }),
              ElementsAre(disk / "a_10.jpg"));
}

} // namespace
} // namespace fennick
