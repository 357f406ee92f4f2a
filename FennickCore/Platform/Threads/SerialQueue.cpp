#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <pthread.h>

#include <utility>

namespace fennick {

namespace {
constexpr std::size_t kLongestThreadName = 15; // bytes; pthread_setname_np refuses a longer one
}

SerialQueue::SerialQueue(std::string label) : thread_([this, name = std::move(label)] { work(name); }) {}

SerialQueue::~SerialQueue() {
  tasks_.end();
  thread_.join();
}

void SerialQueue::work(const std::string &label) {
  ::pthread_setname_np(::pthread_self(), label.substr(0, kLongestThreadName).c_str());
  while (auto task = tasks_.take())
    task();
}

} // namespace fennick
