#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

namespace fennick {

// Limits how often something may happen: at most `max` times per key within any `window`. Any thread; guarded
// by its own lock.
class SlidingWindowLimiter {
public:
  SlidingWindowLimiter(std::int64_t max, Seconds window) : max_(max), window_(window) {}

  // Returns whether the key may proceed, and counts it if so. Refused calls are not counted.
  [[nodiscard]] bool allow(const std::string &key, Uptime now);

private:
  const std::int64_t max_;
  const Seconds window_;
  Mutex lock_;
  std::unordered_map<std::string, std::deque<Uptime>> hits_ GUARDED_BY(lock_); // oldest first
};

} // namespace fennick
