#pragma once

#include "FennickCore/Platform/Mutex.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <string>
#include <thread>

namespace fennick {

// One thread that runs tasks one after another in the order posted. Destroying the queue runs what was posted
// before and waits for it; a task must not destroy its own queue.
class SerialQueue {
public:
  // `label` names the thread where programs are watched; the system keeps its first 15 bytes. Throws when the
  // system grants no thread (std::system_error).
  explicit SerialQueue(std::string label);
  ~SerialQueue();
  SerialQueue(const SerialQueue &) = delete;
  SerialQueue &operator=(const SerialQueue &) = delete;

  // Any thread, tasks of this queue included.
  void post(std::function<void()> task);

private:
  void work(const std::string &label);
  bool nextTask(std::function<void()> &task);

  Mutex lock_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(lock_);
  bool ending_ GUARDED_BY(lock_) = false;
  std::thread thread_; // last: it uses all of the above
};

} // namespace fennick
