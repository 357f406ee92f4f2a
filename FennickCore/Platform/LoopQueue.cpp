#include "FennickCore/Platform/LoopQueue.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <limits>

namespace fennick {

LoopQueue::LoopQueue(const Clock &clock) : clock_(clock), wakeup_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

void LoopQueue::post(std::function<void()> task) {
  {
    const Locked locked(lock_);
    tasks_.push_back(std::move(task));
  }
  ::eventfd_write(wakeup_.get(), 1);
}

void LoopQueue::postAfter(Seconds delay, std::function<void()> task) {
  {
    const Locked locked(lock_);
    timers_.emplace(after(clock_.uptime(), delay), std::move(task));
  }
  ::eventfd_write(wakeup_.get(), 1);
}

void LoopQueue::onSignals(const std::vector<int> &signals, std::function<void(int)> handler) {
  sigset_t set;
  ::sigemptyset(&set);
  for (const int signal : signals)
    ::sigaddset(&set, signal);
  ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
  signals_ = FileDescriptor(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  signalHandler_ = std::move(handler);
}

void LoopQueue::run() {
  while (true) {
    runReady();
    {
      const Locked locked(lock_);
      if (quitting_ && tasks_.empty())
        return;
    }
    std::array<pollfd, 2> waiting{pollfd{.fd = wakeup_.get(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = signals_.get(), .events = POLLIN, .revents = 0}};
    ::poll(waiting.data(), waiting.size(), pollTimeout());
    eventfd_t ignored = 0;
    ::eventfd_read(wakeup_.get(), &ignored);
    if (waiting[1].revents != 0)
      readSignals();
  }
}

void LoopQueue::quit() {
  {
    const Locked locked(lock_);
    quitting_ = true;
  }
  ::eventfd_write(wakeup_.get(), 1);
}

void LoopQueue::runReady() {
  std::vector<std::function<void()>> ready;
  {
    const Locked locked(lock_);
    const auto due = timers_.upper_bound(clock_.uptime());
    for (auto timer = timers_.begin(); timer != due; timer = timers_.erase(timer))
      tasks_.push_back(std::move(timer->second));
    ready.swap(tasks_);
  }
  for (const auto &task : ready)
    task();
}

void LoopQueue::readSignals() {
  signalfd_siginfo info{};
  while (::read(signals_.get(), &info, sizeof info) == sizeof info)
    signalHandler_(static_cast<int>(info.ssi_signo));
}

int LoopQueue::pollTimeout() {
  const Locked locked(lock_);
  if (!tasks_.empty())
    return 0;
  if (timers_.empty())
    return -1;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(timers_.begin()->first - clock_.uptime());
  return static_cast<int>(std::clamp<long long>(left.count(), 0, std::numeric_limits<int>::max()));
}

} // namespace fennick
