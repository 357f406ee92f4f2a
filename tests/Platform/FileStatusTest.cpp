#include "FennickCore/Platform/Files/FileStatus.h"

#include "FennickCore/Platform/Files/Trash.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace fennick {
namespace {

namespace fs = std::filesystem;

// GLib reads this once per process, so all tests share it.
const test::TemporaryFolder kDataHome;
const int kDataHomeIsSet = ::setenv("XDG_DATA_HOME", kDataHome.path().c_str(), 1);

class FileStatusTest : public ::testing::Test {
protected:
  test::TemporaryFolder folder;
};

TEST_F(FileStatusTest, UsesTheEarlierOfBirthAndModification) {
  const auto file = folder.write("photo", "12345");
  const auto fresh = fileStatus(file).value();
  EXPECT_EQ(fresh.bytes, 5);
  for (const Instant old :
       {Instant(std::chrono::milliseconds(1'500)), Instant(-std::chrono::milliseconds(1'500))}) {
    ASSERT_TRUE(setModificationTime(file, old)); // a copy of an old photo
    EXPECT_EQ(fileStatus(file)->created(), old);
    EXPECT_EQ(fileStatus(file)->born, fresh.born);
  }
  ASSERT_TRUE(setModificationTime(file, fresh.modified + std::chrono::hours(1))); // edited later
  EXPECT_EQ(fileStatus(file)->created(), fresh.born.value_or(fileStatus(file)->modified));
}

TEST_F(FileStatusTest, RestoresAFileFromTheTrash) {
  ASSERT_EQ(kDataHomeIsSet, 0);
  SystemTrash trash;
  SystemFileSystem files;
  std::vector<Trashed> trashed;
  for (const char *content : {"first", "second"}) { // with equal names: the trash chooses another one
    const auto photo = folder.write("photos/a.jpg", content);
    const auto moved = trash.moveToTrash(photo);
    if (!moved && moved.error() == std::errc::not_supported)
      GTEST_SKIP() << "no trash for temporary files here";
    ASSERT_TRUE(moved) << moved.error().message();
    EXPECT_FALSE(fs::exists(photo));
    EXPECT_EQ(readFile(moved->file).value(), content);
    EXPECT_THAT(readFile(moved->record).value(), ::testing::HasSubstr(photo.string()));
    trashed.push_back(*moved);
  }
  EXPECT_TRUE(trash.discard(folder.write("photos/a.jpg", "third")));
  EXPECT_THAT(kDataHome.names("Trash/files"), ::testing::SizeIs(3));
  EXPECT_EQ(trash.moveToTrash(folder / "photos/a.jpg").error(), std::errc::no_such_file_or_directory);

  fs::remove_all(folder / "photos"); // other files in it are gone
  EXPECT_EQ(restoreFromTrash(trashed[1], files).value(), folder / "photos/a.jpg");
  EXPECT_EQ(restoreFromTrash(trashed[0], files).value(), folder / "photos/a_2.jpg");
  EXPECT_EQ(folder.read("photos/a.jpg"), "second");
  EXPECT_EQ(folder.read("photos/a_2.jpg"), "first");
  EXPECT_THAT(kDataHome.names("Trash/info"), ::testing::SizeIs(1)); // of the discarded one
  EXPECT_EQ(restoreFromTrash(trashed[0], files).error(), std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace fennick
