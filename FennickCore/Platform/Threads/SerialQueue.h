#pragma once

#include "FennickCore/Platform/Threads/TaskList.h"

#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace fennick {

// One thread that runs tasks one after another in the order posted. The destructor runs all posted tasks and
// waits for them; a task must not destroy its own queue.
class SerialQueue {
public:
  // `label` names the thread in debuggers and process monitors; the kernel keeps its first 15 bytes. Throws
  // std::system_error if the system grants no thread.
  explicit SerialQueue(std::string label);
  ~SerialQueue();
  SerialQueue(const SerialQueue &) = delete;
  SerialQueue &operator=(const SerialQueue &) = delete;

  // Appends a task. Any thread, including tasks of this queue.
  void post(std::function<void()> task) { tasks_.add(std::move(task)); }

private:
  void work(const std::string &label);

  TaskList tasks_;
  std::thread thread_; // last: it uses the list
};

} // namespace fennick
