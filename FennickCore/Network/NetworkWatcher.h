#pragma once

#include "FennickCore/Network/LANAddress.h"
#include "FennickCore/Platform/Threads/MainQueue.h"

#include <functional>
#include <memory>
#include <vector>

namespace fennick {

// Tells this computer's addresses, the one that phones most likely reach first, as soon as it is started and
// whenever they have changed: once for each change that has settled, so that an address that is gone for a
// moment is not reported. A change has settled when nothing has happened for 0.3 s, and after 2 s in any
// case. The kernel wakes it; it asks for nothing by itself. It looks on a thread of its own.
class NetworkWatcher {
public:
  using OnChange = std::function<void(std::vector<LANAddress>)>;

  // `onChange` is called through `mainQueue`, which outlives the watcher; it may stop or destroy the watcher.
  NetworkWatcher(MainQueue &mainQueue, OnChange onChange);
  ~NetworkWatcher();
  NetworkWatcher(const NetworkWatcher &) = delete;
  NetworkWatcher &operator=(const NetworkWatcher &) = delete;

  // Main thread, both. After `stop` nothing is reported, what is posted already included. `start` throws when
  // the system grants no thread (std::system_error); it does nothing while the watcher is at work.
  void start();
  void stop();

private:
  struct State;
  MainQueue &mainQueue_;
  const OnChange onChange_;
  std::unique_ptr<State> state_;
};

} // namespace fennick
