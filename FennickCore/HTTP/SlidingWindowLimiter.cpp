#include "FennickCore/HTTP/SlidingWindowLimiter.h"

namespace fennick {

bool SlidingWindowLimiter::allow(const std::string &key, Uptime now) {
  const Locked locked(lock_);
  auto &hits = hits_[key];
  while (!hits.empty() && now - hits.front() >= window_)
    hits.pop_front();
  if (static_cast<std::int64_t>(hits.size()) >= max_)
    return false;
  hits.push_back(now);
  return true;
}

} // namespace fennick
