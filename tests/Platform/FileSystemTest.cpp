#include "FennickCore/Platform/FileSystem.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

fs::perms modeOf(const fs::path &file) { return fs::status(file).permissions(); }

class FileSystemTest : public ::testing::Test {
protected:
  static std::error_code failing(int error) { return {error, std::generic_category()}; }
  template <typename T>
  static std::error_code errorOf(const IOResult<T> &result) {
    return result ? std::error_code() : result.error();
  }

  test::TemporaryFolder folder;
  SystemFileSystem files;
};

TEST_F(FileSystemTest, AMoveNeverTakesTheNameOfAnother) {
  const auto part = folder.write("part", "new");
  folder.write("taken", "old");
  folder.makeFolder("folder");
  fs::create_symlink("nowhere", folder / "link");
  for (const auto *name : {"taken", "folder", "link"})
    EXPECT_EQ(errorOf(files.moveNoReplace(part, folder / name)), failing(EEXIST)) << name;
  EXPECT_EQ(folder.read("taken"), "old");
  EXPECT_EQ(folder.read("part"), "new");

  EXPECT_TRUE(files.moveNoReplace(part, folder / "free"));
  EXPECT_EQ(folder.read("free"), "new");
  EXPECT_THAT(folder.names(), ElementsAre("folder", "free", "link", "taken"));
}

TEST_F(FileSystemTest, ANewFileNeverOpensWhatIsThere) {
  folder.write("taken", "old");
  fs::create_symlink(folder / "elsewhere", folder / "link");
  EXPECT_EQ(errorOf(files.createFile(folder / "taken")), failing(EEXIST));
  EXPECT_EQ(errorOf(files.createFile(folder / "link")), failing(EEXIST));
  EXPECT_THAT(folder.names(), ElementsAre("link", "taken"));
}

TEST_F(FileSystemTest, FoldersAreMadeDownToTheLastOrTheObstacleIsNamed) {
  EXPECT_TRUE(files.createDirectories(folder / "a/b/c"));
  EXPECT_TRUE(files.createDirectories(folder / "a/b/c"));
  EXPECT_TRUE(fs::is_directory(folder / "a/b/c"));
  fs::create_directory_symlink(folder / "a", folder / "link");
  EXPECT_TRUE(files.createDirectories(folder / "link"));
  EXPECT_TRUE(files.createDirectories(folder / "link/d"));

  folder.write("file");
  EXPECT_EQ(errorOf(files.createDirectories(folder / "file")), failing(ENOTDIR));
  EXPECT_EQ(errorOf(files.createDirectories(folder / "file/below/deep")), failing(ENOTDIR));
  fs::create_symlink("nowhere", folder / "dangling");
  EXPECT_FALSE(files.createDirectories(folder / "dangling"));
}

TEST_F(FileSystemTest, AReplacedFileIsTheUsersAloneAndLeavesNothingBeside) {
  const auto file = folder.write("settings", "old");
  fs::permissions(file, fs::perms(0644));
  ASSERT_TRUE(replaceFile(file, "new"));
  EXPECT_EQ(folder.read("settings"), "new");
  EXPECT_EQ(modeOf(file), fs::perms(0600));
  EXPECT_THAT(folder.names(), ElementsAre("settings"));
}

TEST_F(FileSystemTest, AReplacementThatCannotBeMovedOverLeavesNothingBehind) {
  folder.makeFolder("settings");
  EXPECT_FALSE(replaceFile(folder / "settings", "new"));
  EXPECT_THAT(folder.names(), ElementsAre("settings"));
  EXPECT_FALSE(replaceFile(folder / "missing/settings", "new"));
}

TEST_F(FileSystemTest, OnlyRegularFilesAreRead) {
  const auto file = folder.write("file", "content");
  fs::create_symlink(file, folder / "link");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(errorOf(ReadableFile::open(folder / "link")), failing(ELOOP));
  EXPECT_EQ(errorOf(ReadableFile::open(folder / "pipe")), failing(EINVAL));
  EXPECT_EQ(errorOf(ReadableFile::open("/dev/null")), failing(EINVAL));
  EXPECT_EQ(errorOf(ReadableFile::open(folder.path())), failing(EINVAL));
  EXPECT_EQ(errorOf(fileSize(folder / "link")), failing(EINVAL));
  EXPECT_EQ(fileSize(file), 7);
  EXPECT_EQ(fileKind(folder / "link"), FileKind::link);
  EXPECT_EQ(readFile(file), "content");

  const std::string large(100'000, 'x');
  EXPECT_EQ(readFile(folder.write("large", large)), large);
}

TEST_F(FileSystemTest, AFolderIsListedByKindWithoutFollowingLinks) {
  folder.write("file");
  folder.makeFolder("folder");
  fs::create_directory_symlink(folder / "folder", folder / "link");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  std::vector<std::pair<std::string, FileKind>> seen;
  const auto entries = files.list(folder.path()).value();
  for (const auto &entry : entries)
    seen.emplace_back(entry.name, entry.kind);
  EXPECT_THAT(seen, UnorderedElementsAre(
                        std::pair("file", FileKind::regular), std::pair("folder", FileKind::directory),
                        std::pair("link", FileKind::link), std::pair("pipe", FileKind::other)));
  EXPECT_EQ(errorOf(files.list(folder / "missing")), failing(ENOENT));
  EXPECT_EQ(errorOf(files.list(folder / "file")), failing(ENOTDIR));
}

class DirectoryLockTest : public FileSystemTest {
protected:
  using Mode = DirectoryLock::Mode;
  [[nodiscard]] IOResult<DirectoryLock> lock(Mode mode) const {
    return DirectoryLock::tryLock(folder.path(), mode);
  }
};

TEST_F(DirectoryLockTest, AnExclusiveHolderShutsOutEveryOtherUntilItGoes) {
  {
    const auto first = lock(Mode::exclusive);
    ASSERT_TRUE(first);
    EXPECT_EQ(errorOf(lock(Mode::exclusive)), failing(EWOULDBLOCK));
    EXPECT_EQ(errorOf(lock(Mode::shared)), failing(EWOULDBLOCK));
  }
  EXPECT_TRUE(lock(Mode::exclusive));
}

TEST_F(DirectoryLockTest, AHolderThatSharesLetsOthersShareAndNoneExclude) {
  auto first = lock(Mode::exclusive);
  ASSERT_TRUE(first && first->share());
  const auto second = lock(Mode::shared);
  EXPECT_TRUE(second);
  EXPECT_EQ(errorOf(lock(Mode::exclusive)), failing(EWOULDBLOCK));
}

TEST_F(DirectoryLockTest, AFolderMadeAnewIsAnotherOne) {
  const auto path = folder.makeFolder("incoming");
  const auto held = DirectoryLock::tryLock(path, Mode::shared);
  ASSERT_TRUE(held);
  EXPECT_EQ(held->identity(), fileIdentity(path));
  fs::rename(path, folder / "moved");
  folder.makeFolder("incoming");
  EXPECT_NE(held->identity(), fileIdentity(path));
  EXPECT_TRUE(DirectoryLock::tryLock(path, Mode::exclusive));
}

} // namespace
} // namespace fennick
