#include "tests/Storage/WatchedFolder.h"

#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

namespace fennick {
namespace {

namespace fs = std::filesystem;

// The mounts are visible to this program only; see in-own-mounts.
class FolderWatcherMountTest : public test::WatchedFolder {
protected:
  ~FolderWatcherMountTest() override {
    while (!plugged.empty())
      unplug(fs::path(plugged.back()));
  }
  void plugIn(const fs::path &folder) {
    ASSERT_EQ(::mount("tmpfs", folder.c_str(), "tmpfs", 0, nullptr), 0) << std::strerror(errno);
    plugged.push_back(folder);
  }
  void unplug(const fs::path &folder) {
    EXPECT_EQ(::umount2(folder.c_str(), MNT_DETACH), 0) << std::strerror(errno);
    std::erase(plugged, folder);
  }
  // A file cannot be moved from another drive, so it is created there.
  void arriveOnDrive(const fs::path &file) {
    const fs::path aside = file.parent_path() / ".aside";
    std::ofstream(aside) << "content";
    fs::rename(aside, file);
  }

  std::vector<fs::path> plugged;
};

TEST_F(FolderWatcherMountTest, NoticesDrivesAndChangesOnThem) {
  const fs::path home = photos.parent_path();
  fs::create_directory(photos / "day");
  watch();
  const std::vector<std::pair<std::string, std::function<void()>>> turns{
      {"plugged in", [&] { plugIn(photos); }},
      {"a photo on the drive", [&] { arriveOnDrive(photos / "a.jpg"); }},
      {"unplugged", [&] { unplug(photos); }},
      {"a photo in the folder below", [&] { arrive("a.jpg"); }},
      {"plugged in again", [&] { plugIn(photos); }},
      {"a photo again", [&] { arriveOnDrive(photos / "a.jpg"); }},
      {"unplugged again", [&] { unplug(photos); }},
      {"in place of a folder above", [&] { plugIn(home); }},
      {"the folder is made on it", [&] { fs::create_directory(photos); }},
      {"a photo in that", [&] { arriveOnDrive(photos / "a.jpg"); }},
      {"taken from above", [&] { unplug(home); }},
      {"in place of a folder inside", [&] { plugIn(photos / "day"); }},
      {"a photo inside", [&] { arriveOnDrive(photos / "day/a.jpg"); }},
      {"taken from inside", [&] { unplug(photos / "day"); }},
      {"a photo inside afterwards", [&] { arrive("day/a.jpg"); }},
  };
  for (const auto &[name, turn] : turns)
    expectNoticed(name, turn);
  EXPECT_EQ(callsSoFar(), 1 + std::ssize(turns)); // nothing is reported twice
}

TEST_F(FolderWatcherMountTest, IgnoresMountsElsewhere) {
  const fs::path other = disk.makeFolder("home/other");
  watch();
  for (int i = 0; i < 20; ++i) {
    plugIn(other);
    unplug(other);
  }
  expectNothingNoticedSoFar();
}

} // namespace
} // namespace fennick
