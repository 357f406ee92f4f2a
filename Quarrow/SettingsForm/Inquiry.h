#pragma once

#include "FennickCore/Platform/MainQueue.h"
#include "FennickCore/Platform/SerialQueue.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace quarrow {

// Questions that take a while and of which only the latest one's answer counts. They are answered one after
// another on a thread of their own, which is there from the first one on. Main thread.
template <typename Answer>
class Inquiry {
public:
  // `answered` is called on the main queue, which outlives the object. `label` names the thread.
  Inquiry(fennick::MainQueue &mainQueue, std::string label, std::function<void(const Answer &)> answered)
      : mainQueue_(mainQueue), label_(std::move(label)), answered_(std::move(answered)) {}
  ~Inquiry() { drop(); }
  Inquiry(const Inquiry &) = delete;
  Inquiry &operator=(const Inquiry &) = delete;

  // `question` is called on the thread, unless another one was asked before it came to that.
  void ask(std::function<Answer()> question) {
    const std::uint64_t number = ++*latest_;
    if (!queue_)
      queue_ = std::make_unique<fennick::SerialQueue>(label_);
    queue_->post([this, number, question = std::move(question)] {
      if (number == *latest_)
        tell(number, question());
    });
  }
  // No earlier question is answered any more.
  void drop() { ++*latest_; }

private:
  void tell(std::uint64_t number, Answer answer) {
    mainQueue_.post([this, number, alive = std::weak_ptr(latest_), answer = std::move(answer)] {
      const auto latest = alive.lock();
      if (latest && number == *latest)
        answered_(answer);
    });
  }

  fennick::MainQueue &mainQueue_;
  const std::string label_;
  const std::function<void(const Answer &)> answered_;
  const std::shared_ptr<std::atomic<std::uint64_t>> latest_ = std::make_shared<std::atomic<std::uint64_t>>(0);
  std::unique_ptr<fennick::SerialQueue> queue_; // last: what runs on it uses all of the above
};

} // namespace quarrow
