#include "FennickCore/Platform/FileStatus.h"

#include "FennickCore/Platform/Trash.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

namespace fennick {
namespace {

namespace fs = std::filesystem;

// The library that is asked for the trash reads this once in a program's life, for whichever test comes
// first.
const test::TemporaryFolder kDataHome;
const int kDataHomeIsSet = ::setenv("XDG_DATA_HOME", kDataHome.path().c_str(), 1);

class FileStatusTest : public ::testing::Test {
protected:
  test::TemporaryFolder folder;
};

TEST_F(FileStatusTest, APhotoCameIntoBeingAtTheEarlierOfBirthAndModification) {
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

TEST_F(FileStatusTest, WhatGoesToTheTrashLiesThereWithTheWayBack) {
  ASSERT_EQ(kDataHomeIsSet, 0);
  const auto photo = folder.write("photos/a.jpg", "photo");
  SystemTrash trash;
  const auto moved = trash.moveToTrash(photo);
  if (!moved && moved.error() == std::errc::not_supported)
    GTEST_SKIP() << "no trash for temporary files here";
  ASSERT_TRUE(moved) << moved.error().message();
  EXPECT_FALSE(fs::exists(photo));
  EXPECT_EQ(kDataHome.read("Trash/files/a.jpg"), "photo");
  EXPECT_THAT(kDataHome.read("Trash/info/a.jpg.trashinfo"), ::testing::HasSubstr(photo.string()));
  EXPECT_EQ(trash.moveToTrash(photo).error(), std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace fennick
