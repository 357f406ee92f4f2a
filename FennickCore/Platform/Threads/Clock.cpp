#include "FennickCore/Platform/Threads/Clock.h"

#include <ctime>
#include <tuple>

namespace fennick {

Uptime after(Uptime moment, Seconds length) {
  const Seconds room = Uptime::max() - moment;
  if (length >= room)
    return Uptime::max();
  return moment + std::chrono::duration_cast<std::chrono::nanoseconds>(length);
}

Instant SystemClock::now() const {
  return std::chrono::time_point_cast<std::chrono::nanoseconds>(std::chrono::system_clock::now());
}

Uptime SystemClock::uptime() const {
  timespec time{};
  std::ignore = ::clock_gettime(CLOCK_BOOTTIME, &time); // cannot fail
  return Uptime(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

} // namespace fennick
