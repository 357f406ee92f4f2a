#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"

#include <atomic>
#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <system_error>

namespace fennick {

// One accepted connection: its socket and the peer's numeric address, IPv4 peers always as dotted decimal,
// IPv6 link-local ones with their zone ("fe80::1%wlan0"). Empty when the peer has no IP address.
struct AcceptedSocket {
  FileDescriptor socket;
  std::string remote;
};

// A TCP listener for IPv4 and IPv6 on every address of this computer.
class ListeningSocket {
public:
  // Listens on `port`; 0 lets the system choose. EADDRINUSE when another program has the port. Where the
  // kernel has no IPv6, IPv4 alone is served.
  [[nodiscard]] static IOResult<ListeningSocket> open(std::uint16_t port);

  [[nodiscard]] std::uint16_t port() const { return port_; }

  // Waits for the next connection, whose socket is a blocking one; nothing once `wake` was called or when the
  // listener has failed. A connection that cannot be taken because
  // the program is out of descriptors is closed, so that the queue does not stand still.
  [[nodiscard]] std::optional<AcceptedSocket> accept();
  // Ends the current and every later `accept`. Any thread.
  void wake();

private:
  ListeningSocket(FileDescriptor socket, FileDescriptor wakeup, std::uint16_t port);
  void refuseOne();

  FileDescriptor socket_;
  FileDescriptor wakeup_;
  FileDescriptor spare_; // given up for a moment to be able to refuse when descriptors run out
  std::uint16_t port_;
};

} // namespace fennick
