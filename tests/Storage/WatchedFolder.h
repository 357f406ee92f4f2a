#pragma once

#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/FolderWatcher.h"
#include "tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace fennick::test {

// A watched save folder, and the number of the watcher's calls.
class WatchedFolder : public ::testing::Test {
protected:
  void watch() {
    watcher.emplace(photos, [this] {
      const Locked locked(lock);
      ++calls;
      early += std::filesystem::exists(photos / kLast) ? 0 : 1;
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
  void arrive(const std::string &name) {
    std::filesystem::rename(disk.write("elsewhere/photo"), photos / name);
  }

  static constexpr const char *kLast = "last.jpg";

  TemporaryFolder disk;
  const std::filesystem::path photos = disk.makeFolder("home/photos");
  Mutex lock;
  std::condition_variable called;
  int calls GUARDED_BY(lock) = 0;
  int early GUARDED_BY(lock) = 0; // calls before `kLast` arrived
  std::optional<FolderWatcher> watcher;
};

} // namespace fennick::test
