#include "FennickCore/Platform/Files/FileSystem.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/MemoryFile.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "tests/Support/TemporaryFolder.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

// GLib reads this once per process, so all tests share it.
const test::TemporaryFolder kDataHome;
const int kDataHomeIsSet = ::setenv("XDG_DATA_HOME", kDataHome.path().c_str(), 1);

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

TEST_F(FileSystemTest, UsesTheEarlierOfBirthAndModification) {
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

// No file system here refuses to change permissions of files, but all refuse it for links, so a link is used.
TEST_F(FileSystemTest, ToleratesRefusedPermissionsAndCopiesTheTime) {
  FileStatus like;
  like.modified = Instant(std::chrono::seconds(5));
  like.permissions = 0640;
  const auto link = folder / "link";
  fs::create_symlink(folder.write("photo"), link);
  ASSERT_FALSE(setPermissions(link, 0640));
  EXPECT_TRUE(copyPermissionsAndTime(like, link));
  EXPECT_EQ(fileStatus(link)->modified, like.modified);
  EXPECT_FALSE(copyPermissionsAndTime(like, folder / "gone"));
}

TEST_F(FileSystemTest, RestoresAFileFromTheTrash) {
  ASSERT_EQ(kDataHomeIsSet, 0);
  SystemTrash trash;
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

TEST(MemoryFileTest, ReadsOnlySealedFiles) {
  const auto sealed = sealedMemoryFile("picture").value();
  EXPECT_EQ(readSealedMemoryFile(sealed, 7), "picture");
  EXPECT_EQ(readSealedMemoryFile(sealed, 6).error(), std::errc::file_too_large);
  EXPECT_LT(::write(sealed.get(), "x", 1), 0);
  const FileDescriptor open(::memfd_create("open", MFD_ALLOW_SEALING));
  EXPECT_EQ(::fcntl(open.get(), F_ADD_SEALS, F_SEAL_GROW | F_SEAL_SHRINK), 0);
  EXPECT_FALSE(readSealedMemoryFile(open, 100));
}

} // namespace
} // namespace fennick
