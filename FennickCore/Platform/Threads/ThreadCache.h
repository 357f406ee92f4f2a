#pragma once

#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Platform/Threads/TaskList.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <thread>

namespace fennick {

// Runs each task at once on a thread of its own and reuses threads that have finished. At most `mostIdle`
// threads stay asleep for later tasks; the rest end. The destructor waits for every task. Any thread, except
// that a task must not destroy its own cache.
class ThreadCache {
public:
  explicit ThreadCache(std::size_t mostIdle) : mostIdle_(mostIdle) {}
  ~ThreadCache();
  ThreadCache(const ThreadCache &) = delete;
  ThreadCache &operator=(const ThreadCache &) = delete;

  // Throws std::system_error if the system grants no further thread, or std::bad_alloc; `task` is then
  // dropped.
  void run(std::function<void()> task);

private:
  using Thread = std::list<std::thread>::iterator;

  // Takes one idle thread for a task that follows in `promised_`. Returns false if there is none.
  bool claimIdleThread();
  void startThread(std::function<void()> task);
  void work(Thread self, std::function<void()> task);
  // Counts the calling thread as idle. Returns false if enough threads are idle already.
  bool becomeIdle();
  void joinFinished();

  const std::size_t mostIdle_;
  TaskList promised_; // one task for each thread that was claimed
  Mutex lock_;
  std::condition_variable changed_;
  std::size_t idle_ GUARDED_BY(lock_) = 0; // threads asleep and not yet claimed
  std::list<std::thread> threads_ GUARDED_BY(lock_);
  std::list<std::thread> finished_ GUARDED_BY(lock_); // ended, to be joined
};

} // namespace fennick
