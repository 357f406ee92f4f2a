#pragma once

#include "FennickCore/Platform/System/EventSources.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <QSocketNotifier>

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace quarrow {

// The main queue on Qt's event loop. Tasks run between other events, and a task that is posted while tasks
// run waits for the loop's next turn, so that windows stay responsive. A nested loop that a task starts (a
// dialogue) runs the following tasks. While there is nothing to do, nothing wakes up.
//
// Created and destroyed on the main thread, while there is an application object; tasks that have not run by
// then are dropped.
class EventLoopQueue final : public fennick::MainQueue {
public:
  explicit EventLoopQueue(const fennick::Clock &clock); // `clock` outlives the queue

  void post(std::function<void()> task) override;
  void postAfter(fennick::Seconds delay, std::function<void()> task) override;

  // Calls `handler` on the main thread whenever one of these signals arrives (see SignalSource). Call it
  // once. An application object that starts threads must be created after the source.
  void onSignals(fennick::SignalSource source, std::function<void(int)> handler);
  void onSignals(const std::vector<int> &numbers, std::function<void(int)> handler) {
    onSignals(fennick::SignalSource(numbers), std::move(handler));
  }

  // Runs all due tasks and those that they post, until none is left. For the end of a program, after the
  // event loop. Main thread.
  void drain();

private:
  bool runTurn();
  [[nodiscard]] std::size_t collectDue();
  [[nodiscard]] std::function<void()> takeTask();
  void add(std::function<void()> task) REQUIRES(lock_);
  void setTimer() REQUIRES(lock_);

  const fennick::Clock &clock_;
  fennick::WakeupFlag waiting_; // raised while there are tasks
  fennick::WakeupTimer timer_;  // armed to the earliest of `timers_`
  std::optional<fennick::SignalSource> signals_;
  QSocketNotifier waitingNotifier_;
  QSocketNotifier timerNotifier_;
  std::unique_ptr<QSocketNotifier> signalNotifier_;
  fennick::Mutex lock_;
  std::deque<std::function<void()>> tasks_ GUARDED_BY(lock_);
  std::multimap<fennick::Uptime, std::function<void()>> timers_ GUARDED_BY(lock_);
};

} // namespace quarrow
