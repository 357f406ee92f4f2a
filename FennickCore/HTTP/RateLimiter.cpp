#include "FennickCore/HTTP/RateLimiter.h"

namespace fennick {

bool RateLimiter::isBanned(const std::string &key, Uptime now) {
  const Locked locked(lock_);
  const auto ban = bans_.find(key);
  if (ban == bans_.end())
    return false;
  if (ban->second > now)
    return true;
  bans_.erase(ban);
  return false;
}

void RateLimiter::recordFailure(const std::string &key, Uptime now) {
  const Locked locked(lock_);
  auto &times = failures_[key];
  std::erase_if(times, [&](Uptime time) { return now - time >= config_.window; });
  times.push_back(now);
  if (static_cast<std::int64_t>(times.size()) < config_.maxFailures)
    return;
  bans_[key] = after(now, config_.banDuration);
  failures_.erase(key);
}

void RateLimiter::reset() {
  const Locked locked(lock_);
  failures_.clear();
  bans_.clear();
}

} // namespace fennick
