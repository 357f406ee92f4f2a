#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstddef>
#include <optional>
#include <span>
#include <utility>

namespace fennick {

// One end of a connection between two processes of ours that carries whole messages, each with at most one
// descriptor. One thread at a time.
class MessageSocket {
public:
  explicit MessageSocket(FileDescriptor fd) : fd_(std::move(fd)) {}

  // Two connected ends.
  [[nodiscard]] static IOResult<std::pair<MessageSocket, MessageSocket>> makePair();

  // Fails with EPIPE when the other end is gone. `attached` stays the caller's.
  [[nodiscard]] IOResult<void> send(std::span<const std::byte> message,
                                    const FileDescriptor *attached = nullptr);

  struct Received {
    std::size_t bytes = 0; // length of the message; 0 when the other end is gone
    FileDescriptor attached;
  };
  // The next message, cut to `into`. ETIMEDOUT when none comes within `timeout`; waits for ever without one.
  [[nodiscard]] IOResult<Received> receive(std::span<std::byte> into,
                                           std::optional<Seconds> timeout = std::nullopt);

  // From now on both ends see the other gone. Any thread.
  void disconnect() const;
  // False once the other end is gone.
  [[nodiscard]] bool isConnected() const;
  [[nodiscard]] const FileDescriptor &descriptor() const { return fd_; }

private:
  FileDescriptor fd_;
};

} // namespace fennick
