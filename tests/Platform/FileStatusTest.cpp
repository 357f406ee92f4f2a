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

class FileStatusTest : public ::testing::Test {
protected:
  std::vector<std::string> namesIn(const fs::path &path, Links links) {
    std::vector<std::string> names;
    const auto entries =
        readFolder(path, links, [](std::string_view name, FileKind) { return name != "unwanted"; });
    for (const auto &entry : entries.value_or(std::vector<FolderEntry>{}))
      names.push_back(entry.name);
    return names;
  }

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

TEST_F(FileStatusTest, LinksAreSeenAsLinksAndLeftAlone) {
  const auto file = folder.write("inside/file");
  const auto before = fileStatus(file);
  fs::create_symlink(file, folder / "link");
  fs::create_directory_symlink(folder / "inside", folder / "folderlink");
  EXPECT_EQ(fileStatus(folder / "link")->kind, FileKind::link);
  EXPECT_TRUE(setModificationTime(folder / "link", Instant{}));
  EXPECT_FALSE(setPermissions(folder / "link", 0600));
  EXPECT_EQ(fileStatus(file), before);
  EXPECT_TRUE(setPermissions(file, 0640));
  EXPECT_EQ(fileStatus(file)->permissions, 0640U);

  folder.write("inside/unwanted");
  EXPECT_THAT(namesIn(folder / "folderlink", Links::follow), ::testing::ElementsAre("file"));
  EXPECT_THAT(namesIn(folder / "folderlink", Links::refuse), ::testing::IsEmpty());
  EXPECT_THAT(namesIn(folder / "inside", Links::refuse), ::testing::ElementsAre("file"));
}

TEST_F(FileStatusTest, WhatGoesToTheTrashLiesThereWithTheWayBack) {
  ::setenv("XDG_DATA_HOME", folder.makeFolder("data").c_str(), 1); // read once by the library that is asked
  const auto photo = folder.write("photos/a.jpg", "photo");
  SystemTrash trash;
  const auto moved = trash.moveToTrash(photo);
  if (!moved && moved.error() == std::errc::not_supported)
    GTEST_SKIP() << "no trash for temporary files here";
  ASSERT_TRUE(moved) << moved.error().message();
  EXPECT_FALSE(fs::exists(photo));
  EXPECT_EQ(folder.read("data/Trash/files/a.jpg"), "photo");
  EXPECT_THAT(folder.read("data/Trash/info/a.jpg.trashinfo"), ::testing::HasSubstr(photo.string()));
  EXPECT_EQ(trash.moveToTrash(photo).error(), std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace fennick
