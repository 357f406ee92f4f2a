#include "FennickCore/Platform/System/EventSources.h"

#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <tuple>

namespace fennick {

WakeupFlag::WakeupFlag() : fd_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void WakeupFlag::raise() const { ::eventfd_write(fd_.get(), 1); }

void WakeupFlag::lower() const {
  eventfd_t ignored = 0;
  ::eventfd_read(fd_.get(), &ignored);
}

WakeupTimer::WakeupTimer() : fd_(::timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK)) {}

void WakeupTimer::arm(Uptime::duration delay) const {
  set(std::max(delay, Uptime::duration(1))); // nothing at all would disarm it
}

void WakeupTimer::disarm() const { set(Uptime::duration::zero()); }

// Setting the time anew also forgets that the timer has expired.
void WakeupTimer::set(Uptime::duration delay) const {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(delay);
  const itimerspec time{.it_interval = {},
                        .it_value = {.tv_sec = seconds.count(), .tv_nsec = (delay - seconds).count()}};
  std::ignore = ::timerfd_settime(fd_.get(), 0, &time, nullptr); // cannot fail on a timer
}

SignalSource::SignalSource(const std::vector<int> &numbers) {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int signal : numbers)
    ::sigaddset(&set, signal);
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  fd_ = FileDescriptor(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
}

std::optional<int> SignalSource::take() const {
  signalfd_siginfo info{};
  if (::read(fd_.get(), &info, sizeof info) != sizeof info)
    return std::nullopt;
  return static_cast<int>(info.ssi_signo);
}

} // namespace fennick
