#include "FennickCore/Platform/Files/FileSystem.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

class FileSystemTest : public ::testing::Test {
protected:
  template <typename T>
  static int errorOf(const IOResult<T> &result) {
    return result ? 0 : result.error().value();
  }

  test::TemporaryFolder folder;
  SystemFileSystem files;
};

TEST_F(FileSystemTest, NeverOverwritesAnotherFile) {
  const auto part = folder.write("part", "new");
  folder.write("taken", "old");
  folder.makeFolder("folder");
  fs::create_symlink(folder / "nowhere", folder / "link");
  for (const auto *name : {"taken", "folder", "link"}) {
    EXPECT_EQ(errorOf(files.moveNoReplace(part, folder / name)), EEXIST) << name;
    EXPECT_EQ(errorOf(files.createFile(folder / name)), EEXIST) << name;
  }
  EXPECT_EQ(folder.read("taken"), "old");
  EXPECT_TRUE(files.moveNoReplace(part, folder / "free"));
  EXPECT_EQ(folder.read("free"), "new");
  EXPECT_THAT(folder.names(), ElementsAre("folder", "free", "link", "taken"));
}

TEST_F(FileSystemTest, ReplacesAFilePrivatelyAndLeavesNoTemporary) {
  const auto file = folder.write("settings", "old");
  fs::permissions(file, fs::perms(0644));
  ASSERT_TRUE(replaceFile(file, "new"));
  EXPECT_EQ(folder.read("settings"), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
  folder.makeFolder("folder");
  EXPECT_FALSE(replaceFile(folder / "folder", "new"));
  EXPECT_THAT(folder.names(), ElementsAre("folder", "settings"));
}

TEST_F(FileSystemTest, ReadsOnlyRegularFiles) {
  fs::create_symlink(folder.write("file"), folder / "link");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorOf(ReadableFile::open(folder / "link")), ELOOP);
  EXPECT_EQ(errorOf(ReadableFile::open(folder / "pipe")), EINVAL);
  EXPECT_EQ(errorOf(ReadableFile::open(folder.path())), EINVAL);
  EXPECT_EQ(errorOf(fileSize(folder / "link")), EINVAL);
  const std::string large(100'000, 'x');
  EXPECT_EQ(readFile(folder.write("large", large)), large);
}

TEST_F(FileSystemTest, HoldsLocksUntilTheirOwnerIsDestroyed) {
  using enum DirectoryLock::Mode;
  const auto path = folder.makeFolder("incoming");
  {
    auto first = DirectoryLock::tryLock(path, exclusive);
    ASSERT_TRUE(first);
    EXPECT_EQ(errorOf(DirectoryLock::tryLock(path, exclusive)), EWOULDBLOCK);
    EXPECT_EQ(errorOf(DirectoryLock::tryLock(path, shared)), EWOULDBLOCK);
    ASSERT_TRUE(first->share());
    EXPECT_TRUE(DirectoryLock::tryLock(path, shared));
    EXPECT_EQ(errorOf(DirectoryLock::tryLock(path, exclusive)), EWOULDBLOCK);
  }
  const auto held = DirectoryLock::tryLock(path, exclusive);
  ASSERT_TRUE(held);
  fs::rename(path, folder / "moved");
  folder.makeFolder("incoming"); // made anew, it is another one
  EXPECT_NE(held->identity(), fileIdentity(path));
  EXPECT_TRUE(DirectoryLock::tryLock(path, exclusive));
}

} // namespace
} // namespace fennick
