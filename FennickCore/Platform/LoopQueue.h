#pragma once

#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/MainQueue.h"
#include "FennickCore/Platform/Mutex.h"

#include <functional>
#include <map>
#include <vector>

namespace fennick {

// A MainQueue with a loop of its own, for programs without a toolkit. It sleeps until there is something to
// do.
class LoopQueue final : public MainQueue {
public:
  explicit LoopQueue(const Clock &clock); // `clock` outlives the queue

  void post(std::function<void()> task) override;
  void postAfter(Seconds delay, std::function<void()> task) override;

  // Calls `handler` on the main thread whenever one of these signals arrives. Call it before any other thread
  // is started: it blocks the signals for this thread and all that come after. Once.
  void onSignals(const std::vector<int> &signals, std::function<void(int)> handler);

  // Runs tasks until `quit`, then what was posted before it returns. Main thread.
  void run();
  // Any thread.
  void quit();

private:
  void runReady();
  void readSignals();
  [[nodiscard]] int pollTimeout();

  const Clock &clock_;
  FileDescriptor wakeup_;
  FileDescriptor signals_;
  std::function<void(int)> signalHandler_;
  Mutex lock_;
  std::vector<std::function<void()>> tasks_ GUARDED_BY(lock_);
  std::multimap<Uptime, std::function<void()>> timers_ GUARDED_BY(lock_);
  bool quitting_ GUARDED_BY(lock_) = false;
};

} // namespace fennick
