#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace fennick {

// A TCP connection of ours to a server, as blocking calls that share one deadline. They fail with ETIME once
// the deadline has passed, with ECANCELED once `cancel` was called, and otherwise with the system's error.
// Used by one thread at a time, except `cancel`.
class ClientSocket {
public:
  // `deadline` is a moment of the system's own clock: time for which the computer is suspended counts. Fails
  // when the program is out of descriptors.
  [[nodiscard]] static IOResult<ClientSocket> make(Uptime deadline);

  // Once. EINVAL for a host that is not dotted IPv4, ECONNREFUSED where nothing listens.
  [[nodiscard]] IOResult<void> connect(const std::string &host, std::uint16_t port);
  // Returns once the system has taken all of `bytes`.
  [[nodiscard]] IOResult<void> send(std::span<const std::byte> bytes);
  // Waits for at least one byte; 0 when the server has ended its side.
  [[nodiscard]] IOResult<std::size_t> receive(std::span<std::byte> into);
  // Ends the call under way and all to come. Any thread, at any moment before the object is destroyed.
  void cancel();

private:
  ClientSocket(FileDescriptor socket, FileDescriptor deadline, FileDescriptor wakeup);
  [[nodiscard]] IOResult<void> await(short events) const;

  FileDescriptor socket_;
  FileDescriptor deadline_; // a timer; readable once it has passed
  FileDescriptor wakeup_;
};

} // namespace fennick
