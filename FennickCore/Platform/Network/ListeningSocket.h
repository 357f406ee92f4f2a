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
  // Listens on `port`; 0 lets the system choose. Fails with EADDRINUSE if another program has the port.
  // Without IPv6 in the kernel it serves IPv4 only.
  [[nodiscard]] static IOResult<ListeningSocket> open(std::uint16_t port);

  [[nodiscard]] std::uint16_t port() const { return port_; }

  // Waits for the next connection and returns its blocking socket, or nullopt after `wake` or once the
  // listener has failed. If the program has no descriptors left, the connection is closed, so that the queue
  // does not stall.
  [[nodiscard]] std::optional<AcceptedSocket> accept();
  // Ends the current and every later `accept`. Any thread.
  void wake();

private:
  ListeningSocket(FileDescriptor socket, FileDescriptor wakeup, std::uint16_t port);
  void refuseOne();

  FileDescriptor socket_;
  FileDescriptor wakeup_;
  FileDescriptor spare_; // closed for a moment to accept and refuse a connection when descriptors run out
  std::uint16_t port_;
};

} // namespace fennick
