#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <functional>

namespace fennick {

// The main thread's queue of work. Tasks run there one after another in the order posted; `post` and
// `postAfter` may be called from any thread. Tests drive one by hand.
class MainQueue {
public:
  virtual ~MainQueue() = default;
  virtual void post(std::function<void()> task) = 0;
  // Runs `task` once `delay` has passed, suspended time included.
  virtual void postAfter(Seconds delay, std::function<void()> task) = 0;
};

} // namespace fennick
