#pragma once

#include "FennickCore/Platform/Threads/Mutex.h"

#include <condition_variable>
#include <deque>
#include <functional>

namespace fennick {

// The tasks that one or more threads take in the order in which they were added. Any thread.
class TaskList {
public:
  // Adds a task and wakes one thread that waits in `take`.
  void add(std::function<void()> task);
  // Waits for a task and returns it. Returns an empty function once `end` was called and no task is left.
  [[nodiscard]] std::function<void()> take();
  // Lets `take` return without a task from now on, as soon as the list is empty.
  void end();

private:
  Mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(lock_);
  bool ended_ GUARDED_BY(lock_) = false;
};

} // namespace fennick
