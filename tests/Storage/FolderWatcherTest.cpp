#include "FennickCore/Storage/FolderWatcher.h"

#include "FennickCore/Platform/Threads/Mutex.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace fennick {
namespace {

namespace fs = std::filesystem;

// A watched save folder, and the number of the watcher's calls.
class FolderWatcherTest : public ::testing::Test {
protected:
  void watch() {
    watcher.emplace(photos, [this] {
      const Locked locked(lock);
      ++calls;
      early += fs::exists(photos / kLast) ? 0 : 1;
      called.notify_all();
    });
    await(1);
  }
  // A test without enough calls is ended by its time limit.
  void await(int count) {
    Locked locked(lock);
    while (calls < count)
      locked.wait(called);
  }
  int callsSoFar() {
    const Locked locked(lock);
    return calls;
  }
  // Each action causes one event, so that none is left for the next.
  void expectNoticed(const std::string &name, const std::function<void()> &action) {
    SCOPED_TRACE(name);
    const int before = callsSoFar();
    action();
    await(before + 1);
  }
  void expectNothingNoticedSoFar() {
    arrive(kLast);
    await(2);
    watcher.reset();
    const Locked locked(lock);
    EXPECT_EQ(early, 1);
  }
  void arrive(const std::string &name) { fs::rename(disk.write("elsewhere/photo"), photos / name); }

  static constexpr const char *kLast = "last.jpg";

  test::TemporaryFolder disk;
  const fs::path photos = disk.makeFolder("home/photos");
  Mutex lock;
  std::condition_variable called;
  int calls GUARDED_BY(lock) = 0;
  int early GUARDED_BY(lock) = 0; // calls before `kLast` arrived
  std::optional<FolderWatcher> watcher;
};

TEST_F(FolderWatcherTest, NoticesChangesDownToTheSecondLevel) {
  disk.makeFolder("home/photos/2024-05-01/trip");
  watch();
  expectNoticed("arrival", [&] { arrive("a.jpg"); });
  expectNoticed("departure", [&] { fs::remove(photos / "a.jpg"); });
  expectNoticed("order", [&] { arrive(".fennick-order.json"); });
  expectNoticed("second level", [&] { arrive("2024-05-01/trip/a.jpg"); });
  expectNoticed("time", [&] { fs::last_write_time(photos / "2024-05-01/trip/a.jpg", {}); });
  expectNoticed("new folder", [&] { fs::create_directory(photos / "2024-05-02"); });
  expectNoticed("in it", [&] { arrive("2024-05-02/a.jpg"); });
  disk.makeFolder("elsewhere/day/trip");
  expectNoticed("folders moved in", [&] { fs::rename(disk / "elsewhere/day", photos / "day"); });
  expectNoticed("in them", [&] { arrive("day/trip/a.jpg"); });
  expectNoticed("moved away", [&] { fs::rename(photos / "day", disk / "elsewhere/day"); });
}

TEST_F(FolderWatcherTest, IgnoresFilesThatAreNotShown) {
  for (const char *name : {"originals", "export", ".fennick-incoming", "1/2/3"})
    disk.makeFolder(fmt::format("home/photos/{}", name));
  disk.makeFolder("outside");
  fs::create_directory_symlink(disk / "outside", photos / "link");
  watch();
  for (const char *name : {".rotate-1.tmp", "notes.txt", "originals/a.jpg", "export/a.jpg",
                           ".fennick-incoming/X.part", "1/2/3/a.jpg", "link/a.jpg"})
    for (int i = 0; i < 200; ++i) // gives an incorrect watcher time to call
      arrive(name);
  disk.write("home/other/a.jpg");
  expectNothingNoticedSoFar();
}

TEST_F(FolderWatcherTest, FollowsThePathWhenTheFolderIsReplaced) {
  watch();
  const std::vector<std::pair<std::string, std::function<void()>>> turns{
      {"moved away", [&] { fs::rename(photos, disk / "old"); }},
      {"made anew", [&] { fs::create_directory(photos); }},
      {"removed", [&] { fs::remove_all(photos); }},
      {"a link to another", [&] { fs::create_directory_symlink(disk / "old", photos); }},
      {"a folder above moved away", [&] { fs::rename(disk / "home", disk / "away"); }},
      {"and back", [&] { fs::rename(disk / "away", disk / "home"); }},
  };
  for (const auto &[name, turn] : turns)
    expectNoticed(name, turn);
  expectNoticed("behind the link", [&] { arrive("a.jpg"); });
}

TEST_F(FolderWatcherTest, CombinesThousandsOfChangesIntoAFewCalls) {
  watch();
  arrive("a.jpg");
  for (int i = 0; i < 10'000; ++i) { // exceeds the kernel's queue
    fs::rename(photos / "a.jpg", photos / "b.jpg");
    fs::rename(photos / "b.jpg", photos / "a.jpg");
  }
  await(2);
  EXPECT_LT(callsSoFar(), 100);
  expectNoticed("afterwards", [&] { disk.makeFolder("home/photos/day"); });
  expectNoticed("in it", [&] { arrive("day/a.jpg"); });
}

// The mounts are visible to this program only; see in-own-mounts.
class FolderWatcherMountTest : public FolderWatcherTest {
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
