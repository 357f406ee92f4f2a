#pragma once

#include <chrono>

namespace fennick {

// A length of time in seconds, the unit of every limit and time-out.
using Seconds = std::chrono::duration<double>;

// A moment on the calendar: file names, records, what people see. May jump when the clock is set.
using Instant = std::chrono::sys_time<std::chrono::nanoseconds>;

// A clock that only ever rises and that counts suspended time; time-outs and rate limits are measured on it,
// so that setting the computer's clock neither lifts a ban nor makes one last.
struct UptimeClock {
  using duration = std::chrono::nanoseconds;
  using rep = duration::rep;
  using period = duration::period;
  using time_point = std::chrono::time_point<UptimeClock>;
  static constexpr bool is_steady = true;
};
using Uptime = UptimeClock::time_point;

// `moment` moved by `length`; a length too large for the clock gives the furthest moment there is.
[[nodiscard]] Uptime after(Uptime moment, Seconds length);

// Where time comes from; tests implement one that they move by hand. Any thread.
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
