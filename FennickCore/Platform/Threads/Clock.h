#pragma once

#include <chrono>

namespace fennick {

// A length of time in seconds, the unit of every limit and time-out.
using Seconds = std::chrono::duration<double>;

// A calendar time for file names, records and texts. May jump when the clock is set.
using Instant = std::chrono::sys_time<std::chrono::nanoseconds>;

// A monotonic clock that counts suspended time. Time-outs and rate limits use it, so that setting the
// computer's clock neither lifts nor extends a ban.
struct UptimeClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<UptimeClock>;
  static constexpr bool is_steady = true;
};
using Uptime = UptimeClock::time_point;

// Returns `moment` plus `length`, limited to the range of the clock.
[[nodiscard]] Uptime after(Uptime moment, Seconds length);

// The source of time; tests implement one that they move. Any thread.
class Clock {
public:
  virtual ~Clock() = default;
  [[nodiscard]] virtual Instant now() const = 0;
  [[nodiscard]] virtual Uptime uptime() const = 0;
};

class SystemClock final : public Clock {
public:
  [[nodiscard]] Instant now() const override;
  [[nodiscard]] Uptime uptime() const override;
};

} // namespace fennick
