#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace fennick {

// Computes something on a thread of its own and delivers the result on the main queue. Only the latest
// request counts: an earlier one is neither started nor delivered any more. The thread exists from the first
// request on. Nothing is delivered after the object is destroyed; its destructor waits for the request that
// is being computed. Main thread.
template <typename Result>
class LatestTask {
public:
  // `deliver` is called on `mainQueue`, which outlives the object. `label` names the thread.
  LatestTask(MainQueue &mainQueue, std::string label, std::function<void(const Result &)> deliver)
      : mainQueue_(mainQueue), label_(std::move(label)), deliver_(std::move(deliver)) {}
  ~LatestTask() { cancel(); }
  LatestTask(const LatestTask &) = delete;
  LatestTask &operator=(const LatestTask &) = delete;

  // Requests a run of `compute`, which is called on the thread.
  void request(std::function<Result()> compute) {
    cancel();
    if (!queue_)
      queue_ = std::make_unique<SerialQueue>(label_);
    queue_->post([this, token = lifetime_.token(), compute = std::move(compute)] {
      if (token.isCancelled())
        return;
      mainQueue_.post(token.guard([this, result = compute()] { deliver_(result); }));
    });
  }

  // No result of an earlier request is delivered any more.
  void cancel() { lifetime_.cancel(); }

private:
  MainQueue &mainQueue_;
  const std::string label_;
  const std::function<void(const Result &)> deliver_;
  Lifetime lifetime_;
  std::unique_ptr<SerialQueue> queue_; // last: what runs on it uses all of the above
};

} // namespace fennick
