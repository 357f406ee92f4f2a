#include "FennickCore/Storage/FolderPruner.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
  EXPECT_EQ(disk.names().size(),
            16U); // ten of twelve, three files, a folder, a link, a folder with a photo's name
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
