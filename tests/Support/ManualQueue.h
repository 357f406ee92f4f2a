#pragma once

#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "tests/Support/FakeClock.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <iterator>
#include <map>
#include <utility>

namespace fennick::test {

// A main queue whose tasks run when the test calls it; its timers follow a fake clock.
class ManualQueue final : public MainQueue {
public:
  void post(std::function<void()> task) override { postAfter(Seconds(0), std::move(task)); }
  void postAfter(Seconds delay, std::function<void()> task) override {
    const Locked locked(lock_);
    tasks_.emplace(after(clock_.uptime(), delay), std::move(task));
    changed_.notify_all();
  }

  // Runs all due tasks and those that become due meanwhile.
  void run() {
    while (const auto task = takeDue())
      task();
  }
  // Runs due tasks and those of other threads until `condition` holds. A test whose condition never holds is
  // ended by its time limit.
  void runUntil(const std::function<bool()> &condition) {
    for (run(); !condition(); runNext())
      ;
  }
  // Waits for a task of another thread if none is due, and runs the due ones.
  void runNext() {
    {
      Locked locked(lock_);
      while (tasks_.empty() || tasks_.begin()->first > clock_.uptime())
        locked.wait(changed_);
    }
    run();
  }
  // The number of tasks that are not due.
  std::size_t pending() {
    const Locked locked(lock_);
    return static_cast<std::size_t>(std::distance(tasks_.upper_bound(clock_.uptime()), tasks_.end()));
  }
  void advance(Seconds length) {
    clock_.advance(length);
    run();
  }
  [[nodiscard]] FakeClock &clock() { return clock_; }

private:
  std::function<void()> takeDue() {
    const Locked locked(lock_);
    if (tasks_.empty() || tasks_.begin()->first > clock_.uptime())
      return nullptr;
    return std::move(tasks_.extract(tasks_.begin()).mapped());
  }

  FakeClock clock_;
  Mutex lock_;
  std::condition_variable changed_;
  std::multimap<Uptime, std::function<void()>> tasks_ GUARDED_BY(lock_);
};

} // namespace fennick::test
