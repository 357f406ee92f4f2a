#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstddef>
#include <optional>
#include <span>
#include <utility>

namespace fennick {

// One end of a connection between two of our processes that carries whole messages with at most one
// descriptor each. One thread at a time.
class MessageSocket {
public:
  explicit MessageSocket(FileDescriptor fd) : fd_(std::move(fd)) {}

  // Creates two connected ends.
  [[nodiscard]] static IOResult<std::pair<MessageSocket, MessageSocket>> makePair();

  // Sends one message. Fails with EPIPE if the other end is closed. `attached` stays with the caller.
  [[nodiscard]] IOResult<void> send(std::span<const std::byte> message,
                                    const FileDescriptor *attached = nullptr);

  struct Received {
    std::size_t bytes = 0; // length of the message; 0 if the other end is closed
    FileDescriptor attached;
  };
  // Returns the next message, truncated to `into`. Fails with ETIMEDOUT if none arrives within `timeout`;
  // without one it waits without limit.
  [[nodiscard]] IOResult<Received> receive(std::span<std::byte> into,
                                           std::optional<Seconds> timeout = std::nullopt);

  // Closes the connection for both ends. Any thread.
  void disconnect() const;
  // Returns false once the other end is closed.
  [[nodiscard]] bool isConnected() const;
  [[nodiscard]] const FileDescriptor &descriptor() const { return fd_; }

private:
  FileDescriptor fd_;
};

} // namespace fennick
