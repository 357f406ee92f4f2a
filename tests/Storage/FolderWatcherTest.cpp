#include "FennickCore/Storage/FolderWatcher.h"

#include "FennickCore/Platform/Mutex.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <optional>

namespace fennick {
namespace {

namespace fs = std::filesystem;

class FolderWatcherTest : public ::testing::Test {
protected:
  void watch() {
    watcher.emplace(photos, [this] {
      const Locked locked(lock);
      ++calls;
      called.notify_all();
    });
    await(1);
  }
  // A test that waits in vain is ended by its time limit.
  void await(int count) {
    Locked locked(lock);
    while (calls < count)
      locked.wait(called);
  }
  int callsSoFar() {
    const Locked locked(lock);
    return calls;
  }
  // Each action is one event, so that nothing of it is left for the next.
  void expectNoticed(const std::string &name, const std::function<void()> &action) {
    SCOPED_TRACE(name);
    const int before = callsSoFar();
    action();
    await(before + 1);
  }
  void arrive(const std::string &name) { fs::rename(disk.write("elsewhere/photo"), photos / name); }

  test::TemporaryFolder disk;
  const fs::path photos = disk.makeFolder("home/photos");
  Mutex lock;
  std::condition_variable called;
  int calls GUARDED_BY(lock) = 0;
  std::optional<FolderWatcher> watcher;
};

TEST_F(FolderWatcherTest, ChangesAreNoticedDownToTheSecondLevelAlsoInFoldersThatAppear) {
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

TEST_F(FolderWatcherTest, WhatIsNotShownIsNoChange) {
  for (const char *name : {"originals", "export", ".fennick-incoming", "1/2/3"})
    disk.makeFolder(fmt::format("home/photos/{}", name));
  disk.makeFolder("outside");
  fs::create_directory_symlink(disk / "outside", photos / "link");
  watch();
  for (const char *name : {"originals/a.jpg", "export/a.jpg", ".fennick-incoming/X.part", "1/2/3/a.jpg",
                           "link/a.jpg", ".rotate-1.tmp", "notes.txt"})
    arrive(name);
  disk.write("home/other/a.jpg");
  arrive("a.jpg");
  await(2);
  watcher.reset();
  EXPECT_EQ(callsSoFar(), 2);
}

TEST_F(FolderWatcherTest, TheWatcherKeepsToThePathWhateverBecomesOfTheFolder) {
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

TEST_F(FolderWatcherTest, ThousandsOfChangesAreToldInAFewCalls) {
  watch();
  arrive("a.jpg");
  for (int i = 0; i < 10'000; ++i) { // more than the kernel keeps
    fs::rename(photos / "a.jpg", photos / "b.jpg");
    fs::rename(photos / "b.jpg", photos / "a.jpg");
  }
  await(2);
  EXPECT_LT(callsSoFar(), 100);
  expectNoticed("afterwards", [&] { disk.makeFolder("home/photos/day"); });
  expectNoticed("in it", [&] { arrive("day/a.jpg"); });
}

} // namespace
} // namespace fennick
