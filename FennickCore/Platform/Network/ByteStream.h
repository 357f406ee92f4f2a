#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <atomic>
#include <cstddef>
#include <expected>
#include <span>

namespace fennick {

enum class StreamError {
  timedOut,  // the deadline passed first
  cancelled, // `cancel` was called
  failed,    // the peer reset the connection, or the system refused
};

// One side of an accepted TCP connection, as blocking calls with deadlines. Used by one thread at a time,
// except `cancel`, which any thread may call at any moment before the object is destroyed.
class ByteStream {
public:
  virtual ~ByteStream() = default;
  // Waits for at least one byte and returns how many arrived; 0 if the peer has closed its side.
  [[nodiscard]] virtual std::expected<std::size_t, StreamError> receive(std::span<std::byte> into,
                                                                        Uptime deadline) = 0;
  // Waits until the system has accepted at least one byte of `bytes` and returns how many.
  [[nodiscard]] virtual std::expected<std::size_t, StreamError> send(std::span<const std::byte> bytes,
                                                                     Uptime deadline) = 0;
  // Closes the sending side.
  virtual void finishOutput() = 0;
  // Wakes a thread that waits in `receive` or `send`. Both fail with `cancelled` from now on.
  virtual void cancel() = 0;
};

// A ByteStream on a connected, blocking socket, which it owns.
class SocketStream final : public ByteStream {
public:
  // `clock` outlives the stream; the deadlines are measured on it.
  SocketStream(FileDescriptor socket, const Clock &clock);

  std::expected<std::size_t, StreamError> receive(std::span<std::byte> into, Uptime deadline) override;
  std::expected<std::size_t, StreamError> send(std::span<const std::byte> bytes, Uptime deadline) override;
  void finishOutput() override;
  void cancel() override;

private:
  template <typename Call>
  std::expected<std::size_t, StreamError> waiting(int option, std::chrono::milliseconds &current,
                                                  Uptime deadline, Call call);

  FileDescriptor socket_;
  const Clock &clock_;
  std::chrono::milliseconds receivePatience_{0}; // time-outs set on the socket last
  std::chrono::milliseconds sendPatience_{0};
  std::atomic<bool> cancelled_ = false;
};

} // namespace fennick
