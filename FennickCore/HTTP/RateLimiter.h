#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace fennick {

// Bans remote addresses that keep failing. Shared by the listener and all connections; any thread; guarded by
// its own lock. Not persistent: a restart forgets every ban. Times are on the uptime clock, so that setting
// the computer's clock changes no ban.
class RateLimiter {
public:
  struct Config {
    std::int64_t maxFailures; // this many failures within `window` ban the address
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

// The values of this program: guessing a key ends after ten tries; a guest who mistyped it waits five
// minutes.
inline constexpr RateLimiter::Config kServiceBans{
    .maxFailures = 10, .window = Seconds(60), .banDuration = Seconds(300)};

} // namespace fennick
