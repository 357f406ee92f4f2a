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

// Becomes readable once the time it was armed with has passed, suspended time included. Any thread.
class WakeupTimer {
public:
  WakeupTimer();
  // Replaces the time it was armed with before, whether that has passed or not. A `delay` of zero or less
  // expires at once.
  void arm(Uptime::duration delay) const;
  void disarm() const;
  [[nodiscard]] int descriptor() const { return fd_.get(); }

private:
  void set(Uptime::duration delay) const;
  FileDescriptor fd_;
};

// Signals to the process as something to read. Create it before any other thread: it blocks the signals for
// this thread and its descendants. They stay blocked after its destruction, so that a late signal does not
// interrupt an orderly end. Child processes get them unblocked.
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
