#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fennick {

// Bans a remote address that keeps failing. One object is shared by the listener and all its connections; any
// thread; guarded by its own lock. Nothing is persisted: a restart forgets every ban. Moments are on the
// uptime clock, so that setting the computer's clock changes no ban.
class RateLimiter {
public:
  struct Config {
    std::int64_t maxFailures; // so many failures within `window` ban the address
    Seconds window;
    Seconds banDuration;
  };

  explicit RateLimiter(Config config) : config_(config) {}

  [[nodiscard]] bool isBanned(const std::string &key, Uptime now);
  void recordFailure(const std::string &key, Uptime now);
  // Lifts every ban and forgets every failure.
  void reset();

private:
  const Config config_;
  Mutex lock_;
  std::unordered_map<std::string, std::vector<Uptime>> failures_ GUARDED_BY(lock_); // oldest first
  std::unordered_map<std::string, Uptime> bans_ GUARDED_BY(lock_);                  // when each ban ends
};

// What this program runs with: guessing a key stops after ten tries, a fumbling guest waits five minutes.
inline constexpr RateLimiter::Config kServiceBans{
    .maxFailures = 10, .window = Seconds(60), .banDuration = Seconds(300)};

} // namespace fennick
