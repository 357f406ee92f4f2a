#include "Quarrow/App/EventLoopQueue.h"

#include <QObject>

#include <utility>

namespace quarrow {

using fennick::Locked;

EventLoopQueue::EventLoopQueue(const fennick::Clock &clock)
    : clock_(clock), waitingNotifier_(waiting_.descriptor(), QSocketNotifier::Read),
      timerNotifier_(timer_.descriptor(), QSocketNotifier::Read) {
  for (QSocketNotifier *notifier : {&waitingNotifier_, &timerNotifier_})
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [this] { runTurn(); });
}

void EventLoopQueue::post(std::function<void()> task) {
  const Locked locked(lock_);
  add(std::move(task));
}

void EventLoopQueue::postAfter(fennick::Seconds delay, std::function<void()> task) {
  const Locked locked(lock_);
  const auto added = timers_.emplace(fennick::after(clock_.uptime(), delay), std::move(task));
  if (added == timers_.begin())
    setTimer();
}

void EventLoopQueue::onSignals(fennick::SignalSource source, std::function<void(int)> handler) {
  signals_.emplace(std::move(source));
  signalNotifier_ = std::make_unique<QSocketNotifier>(signals_->descriptor(), QSocketNotifier::Read);
  QObject::connect(signalNotifier_.get(), &QSocketNotifier::activated, signalNotifier_.get(),
                   [this, handler = std::move(handler)] {
                     while (const auto signal = signals_->take())
                       handler(*signal);
                   });
}

void EventLoopQueue::drain() {
  while (runTurn()) {
  }
}

// Runs as many tasks as are queued at the beginning. Returns false if there were none. A nested loop may run
// some of them meanwhile.
bool EventLoopQueue::runTurn() {
  const std::size_t due = collectDue();
  for (std::size_t left = due; left > 0; --left)
    if (const auto task = takeTask())
      task();
  return due > 0;
}

std::size_t EventLoopQueue::collectDue() {
  const Locked locked(lock_);
  const auto due = timers_.upper_bound(clock_.uptime());
  for (auto timer = timers_.begin(); timer != due; timer = timers_.erase(timer))
    add(std::move(timer->second));
  setTimer();
  return tasks_.size();
}

std::function<void()> EventLoopQueue::takeTask() {
  const Locked locked(lock_);
  if (tasks_.empty())
    return nullptr;
  auto task = std::move(tasks_.front());
  tasks_.pop_front();
  if (tasks_.empty())
    waiting_.lower();
  return task;
}

void EventLoopQueue::add(std::function<void()> task) {
  if (tasks_.empty())
    waiting_.raise();
  tasks_.push_back(std::move(task));
}

void EventLoopQueue::setTimer() {
  if (timers_.empty())
    timer_.disarm();
  else
    timer_.arm(timers_.begin()->first - clock_.uptime());
}

} // namespace quarrow
