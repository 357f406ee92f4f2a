#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <atomic>
#include <cstdint>

namespace fennick::test {

// Time that only a test moves. Both clocks; any thread.
class FakeClock final : public Clock {
public:
  [[nodiscard]] Instant now() const override { return Instant(std::chrono::nanoseconds(now_)); }
  [[nodiscard]] Uptime uptime() const override { return Uptime(std::chrono::nanoseconds(uptime_)); }

  // Moves both clocks.
  void advance(Seconds length) { move(std::chrono::duration_cast<std::chrono::nanoseconds>(length)); }
  // Moves both clocks until `moment` on the uptime clock, unless that has passed.
  void advanceTo(Uptime moment) {
    if (moment > uptime())
      move(moment - uptime());
  }
  // Sets the calendar without the uptime.
  void setCalendar(Instant now) { now_ = now.time_since_epoch().count(); }

private:
  void move(std::chrono::nanoseconds step) {
    now_ += step.count();
    uptime_ += step.count();
  }

  // 2024-05-01 12:00:00 UTC, an hour after the start of the computer.
  std::atomic<std::int64_t> now_ = 1'714'564'800'000'000'000;
  std::atomic<std::int64_t> uptime_ = 3'600'000'000'000;
};

} // namespace fennick::test
