#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fennick {

// A TCP connection to a server, as blocking calls that share one deadline. They fail with ETIME after the
// deadline, with ECANCELED after `cancel`, and otherwise with the system's error. Used by one thread at a
// time, except `cancel`.
class ClientSocket {
public:
  // `deadline` is on the uptime clock, which counts suspended time. Fails if the program has no descriptors
  // left.
  [[nodiscard]] static IOResult<ClientSocket> make(Uptime deadline);

  // Connects. Call it once. Fails with EINVAL if the host is not dotted IPv4 and with ECONNREFUSED if nothing
  // listens.
  [[nodiscard]] IOResult<void> connect(const std::string &host, std::uint16_t port);
  // Returns once the system has accepted all of `bytes`.
  [[nodiscard]] IOResult<void> send(std::span<const std::byte> bytes);
  // Waits for at least one byte and returns how many arrived; 0 if the server has closed its side.
  [[nodiscard]] IOResult<std::size_t> receive(std::span<std::byte> into);
  // Ends the current and all later calls. Any thread, at any time before the object is destroyed.
  void cancel();

private:
  ClientSocket(FileDescriptor socket, FileDescriptor deadline, FileDescriptor wakeup);
  [[nodiscard]] IOResult<void> await(short events) const;

  FileDescriptor socket_;
  FileDescriptor deadline_; // a timer that is readable after the deadline
  FileDescriptor wakeup_;
};

} // namespace fennick
