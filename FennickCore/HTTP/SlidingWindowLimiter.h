#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>

namespace fennick {

// Throttles accepted work: at most `max` hits a key within any `window`. Any thread; guarded by its own lock.
class SlidingWindowLimiter {
public:
  SlidingWindowLimiter(std::int64_t max, Seconds window) : max_(max), window_(window) {}

  // Whether the key may go on now; if so, the hit is counted. A refused one is not.
  [[nodiscard]] bool allow(const std::string &key, Uptime now);

private:
  const std::int64_t max_;
  const Seconds window_;
  Mutex lock_;
  std::unordered_map<std::string, std::deque<Uptime>> hits_ GUARDED_BY(lock_); // oldest first
};

} // namespace fennick
