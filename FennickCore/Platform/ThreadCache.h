#pragma once

#include "FennickCore/Platform/Mutex.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <thread>

namespace fennick {

// Runs each task at once on a thread of its own, taking an idle thread when there is one. A few threads stay
// asleep for the next tasks; the rest end. Destroying the cache waits for every task. Any thread, except that
// a task must not destroy its own cache.
class ThreadCache {
public:
  explicit ThreadCache(std::size_t mostIdle) : mostIdle_(mostIdle) {}
  ~ThreadCache();
  ThreadCache(const ThreadCache &) = delete;
  ThreadCache &operator=(const ThreadCache &) = delete;

  // Throws, without keeping `task`, when the system grants no further thread (std::system_error) or no
  // memory.
  void run(std::function<void()> task);

private:
  void startThread() REQUIRES(lock_);
  void work(std::list<std::thread>::iterator self);
  bool nextTask(std::function<void()> &task);
  void joinFinished();

  const std::size_t mostIdle_;
  Mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(lock_); // each promised to an idle thread
  std::size_t idle_ GUARDED_BY(lock_) = 0;                    // threads asleep and not yet promised a task
  bool ending_ GUARDED_BY(lock_) = false;
  std::list<std::thread> threads_ GUARDED_BY(lock_);
  std::list<std::thread> finished_ GUARDED_BY(lock_); // ended, to be joined
};

} // namespace fennick
