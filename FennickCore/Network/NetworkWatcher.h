#pragma once

#include "FennickCore/Network/LANAddress.h"
#include "FennickCore/Platform/Threads/MainQueue.h"

#include <functional>
#include <memory>
#include <vector>

namespace fennick {

// Reports this computer's addresses, best first, when it is started and after every change. A burst of
// changes is reported once, when nothing has changed for 0.3 s or after 2 s, so that an address that is gone
// for a moment is not reported. Events from the kernel wake it; it does not poll. Works on a thread of its
// own.
class NetworkWatcher {
public:
  using OnChange = std::function<void(std::vector<LANAddress>)>;

  // `onChange` is called through `mainQueue`, which outlives the watcher; it may stop or destroy the watcher.
  NetworkWatcher(MainQueue &mainQueue, OnChange onChange);
  ~NetworkWatcher();
  NetworkWatcher(const NetworkWatcher &) = delete;
  NetworkWatcher &operator=(const NetworkWatcher &) = delete;

  // Main thread. Nothing is reported after `stop`, including reports that are already posted. `start` throws
  // std::system_error if the system grants no thread, and does nothing while the watcher runs.
  void start();
  void stop();

private:
  struct State;
  MainQueue &mainQueue_;
  const OnChange onChange_;
  std::unique_ptr<State> state_;
};

} // namespace fennick
