#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <optional>

namespace fennick {

// Reports that network interfaces, their IPv4 addresses or the IPv4 routes have changed, not what they are
// now. No change after construction is missed: the kernel queues them until the next wait, and messages that
// it had to drop count as a change. Nothing runs in the background. One thread at a time, except `interrupt`.
class RouteMonitor {
public:
  enum class Woken { changes, interrupted, timeout };

  // If the system grants no routing socket, the object reports no changes.
  RouteMonitor();

  // Sleeps until something has changed since the last call that reported a change, at most for `most` or
  // without limit.
  [[nodiscard]] Woken awaitChanges(std::optional<Seconds> most = std::nullopt);
  // Ends the current and all later sleeps. Any thread.
  void interrupt();

private:
  void forgetChanges();

  FileDescriptor routing_;
  FileDescriptor wakeup_;
};

} // namespace fennick
