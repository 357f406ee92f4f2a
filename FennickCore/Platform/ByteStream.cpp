#include "FennickCore/Platform/ByteStream.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace fennick {

namespace {

// Milliseconds to hand to poll, rounded up so that a deadline is never taken for passed too early.
int pollTimeout(Uptime now, Uptime deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
  return static_cast<int>(std::clamp<long long>(left, 0, std::numeric_limits<int>::max()));
}

bool wouldBlock(int error) { return error == EAGAIN; }

} // namespace

SocketStream::SocketStream(FileDescriptor socket, const Clock &clock)
    : socket_(std::move(socket)), clock_(clock) {}

std::expected<std::size_t, StreamError> SocketStream::receive(std::span<std::byte> into, Uptime deadline) {
  while (true) {
    if (cancelled_)
      return std::unexpected(StreamError::cancelled);
    if (clock_.uptime() >= deadline)
      return std::unexpected(StreamError::timedOut);
    const ssize_t count = ::recv(socket_.get(), into.data(), into.size(), MSG_DONTWAIT);
    if (count >= 0 && !cancelled_)
      return static_cast<std::size_t>(count);
    if (count < 0 && !wouldBlock(errno) && errno != EINTR)
      return std::unexpected(cancelled_ ? StreamError::cancelled : StreamError::failed);
    if (auto ready = wait(POLLIN, deadline); !ready)
      return std::unexpected(ready.error());
  }
}

std::expected<std::size_t, StreamError> SocketStream::send(std::span<const std::byte> bytes, Uptime deadline) {
  while (true) {
    if (cancelled_)
      return std::unexpected(StreamError::cancelled);
    if (clock_.uptime() >= deadline)
      return std::unexpected(StreamError::timedOut);
    const ssize_t count = ::send(socket_.get(), bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (count >= 0)
      return static_cast<std::size_t>(count);
    if (!wouldBlock(errno) && errno != EINTR)
      return std::unexpected(cancelled_ ? StreamError::cancelled : StreamError::failed);
    if (auto ready = wait(POLLOUT, deadline); !ready)
      return std::unexpected(ready.error());
  }
}

// Returns when the socket may be ready or a signal came; the caller's loop looks again.
std::expected<void, StreamError> SocketStream::wait(short events, Uptime deadline) {
  pollfd waiting{.fd = socket_.get(), .events = events, .revents = 0};
  const int ready = ::poll(&waiting, 1, pollTimeout(clock_.uptime(), deadline));
  if (ready < 0 && errno != EINTR)
    return std::unexpected(StreamError::failed);
  return {};
}

void SocketStream::finishOutput() { ::shutdown(socket_.get(), SHUT_WR); }

void SocketStream::cancel() {
  cancelled_ = true;
  ::shutdown(socket_.get(), SHUT_RDWR);
}

} // namespace fennick
