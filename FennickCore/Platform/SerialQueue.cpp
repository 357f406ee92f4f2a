#include "FennickCore/Platform/SerialQueue.h"

#include <pthread.h>

#include <utility>

namespace fennick {

namespace {
constexpr std::size_t kLongestThreadName = 15; // bytes; a longer one is refused
}

SerialQueue::SerialQueue(std::string label) : thread_([this, name = std::move(label)] { work(name); }) {}

SerialQueue::~SerialQueue() {
  {
    const Locked locked(lock_);
    ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void SerialQueue::post(std::function<void()> task) {
  {
    const Locked locked(lock_);
    tasks_.push_back(std::move(task));
  }
  changed_.notify_one();
}

void SerialQueue::work(const std::string &label) {
  ::pthread_setname_np(::pthread_self(), label.substr(0, kLongestThreadName).c_str());
  std::function<void()> task;
  while (nextTask(task)) {
    task();
    task = nullptr;
  }
}

// Waits for a task; false when the queue is ending and nothing is left to do.
bool SerialQueue::nextTask(std::function<void()> &task) {
  Locked locked(lock_);
  while (tasks_.empty() && !ending_)
    locked.wait(changed_);
  if (tasks_.empty())
    return false;
  task = std::move(tasks_.front());
  tasks_.pop_front();
  return true;
}

} // namespace fennick
