#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <optional>

namespace fennick {

// Tells that this computer's network interfaces, their IPv4 addresses or the IPv4 routes have changed; what
// they are now is asked elsewhere. Nothing that happens after the object is made is missed: the kernel keeps
// word of it until the next wait, and word that it had to drop for want of room counts as a change as well.
// Nothing runs in the background. One thread at a time, `interrupt` apart.
class RouteMonitor {
public:
  enum class Woken { changes, interrupted, timeout };

  // An object that sees no changes when the system grants no routing socket.
  RouteMonitor();

  // Sleeps until something has changed since the last call that said so, for at most `most`, or for ever
  // without it.
  [[nodiscard]] Woken awaitChanges(std::optional<Seconds> most = std::nullopt);
  // Ends every sleep, that under way and all to come. Any thread.
  void interrupt();

private:
  void forgetChanges();

  FileDescriptor routing_;
  FileDescriptor wakeup_;
};

} // namespace fennick
