#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <optional>
#include <vector>

// What a program's event loop watches besides its windows. Each has a descriptor that is readable for as long
// as there is something to do; one that the system refused (no descriptors left) never is.
namespace fennick {

// Raised by any thread, lowered by the loop.
class WakeupFlag {
public:
  WakeupFlag();
  void raise() const;
  void lower() const;
  [[nodiscard]] int descriptor() const { return fd_.get(); }

private:
  FileDescriptor fd_;
};

// Expires once the time it was armed with has passed, suspended time included. Any thread.
class WakeupTimer {
public:
  WakeupTimer();
  // In place of what it was armed with before, expired or not; a `delay` that is over expires at once.
  void arm(Uptime::duration delay) const;
  void disarm() const;
  [[nodiscard]] int descriptor() const { return fd_.get(); }

private:
  void set(Uptime::duration delay) const;
  FileDescriptor fd_;
};

// Signals sent to the process, as something to read. Made before any other thread is started: it blocks them
// for this thread and for those that come after, and they stay blocked when it is gone, so that a signal that
// comes late does not cut an orderly end short. Programs that are started get them unblocked.
class SignalSource {
public:
  explicit SignalSource(const std::vector<int> &numbers);
  // Returns the next signal that arrived, or nullopt if there is none.
  [[nodiscard]] std::optional<int> take() const;
  [[nodiscard]] int descriptor() const { return fd_.get(); }

private:
  FileDescriptor fd_;
};

} // namespace fennick
