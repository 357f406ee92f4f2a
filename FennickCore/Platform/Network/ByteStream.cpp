#include "FennickCore/Platform/Network/ByteStream.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>

namespace fennick {

namespace {

using std::chrono::milliseconds;

// Returns the socket time-out for a deadline, rounded up to a step so that it stays the same for successive
// chunks of a body and needs no further system call.
milliseconds patience(Uptime now, Uptime deadline) {
  constexpr milliseconds kStep{100};
  constexpr milliseconds kLongest = std::chrono::hours(1);
  const auto left = std::chrono::ceil<milliseconds>(deadline - now);
  if (left < milliseconds(1000))
    return std::max(left, milliseconds(1));
  return std::min((left + kStep - milliseconds(1)) / kStep * kStep, kLongest);
}

timeval timevalOf(milliseconds time) {
  return {.tv_sec = time.count() / 1000, .tv_usec = time.count() % 1000 * 1000};
}

} // namespace

SocketStream::SocketStream(FileDescriptor socket, const Clock &clock)
    : socket_(std::move(socket)), clock_(clock) {}

std::expected<std::size_t, StreamError> SocketStream::receive(std::span<std::byte> into, Uptime deadline) {
  return waiting(SO_RCVTIMEO, receivePatience_, deadline,
                 [&] { return ::recv(socket_.get(), into.data(), into.size(), 0); });
}

std::expected<std::size_t, StreamError> SocketStream::send(std::span<const std::byte> bytes,
                                                           Uptime deadline) {
  return waiting(SO_SNDTIMEO, sendPatience_, deadline,
                 [&] { return ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL); });
}

// Lets the kernel enforce the deadline in one blocking call, which halves the system calls compared with
// polling first.
template <typename Call>
std::expected<std::size_t, StreamError> SocketStream::waiting(int option, milliseconds &current,
                                                              Uptime deadline, Call call) {
  while (true) {
    const Uptime now = clock_.uptime();
    if (cancelled_)
      return std::unexpected(StreamError::cancelled);
    if (now >= deadline)
      return std::unexpected(StreamError::timedOut);
    if (const auto wanted = patience(now, deadline); wanted != current) {
      const timeval time = timevalOf(wanted);
      ::setsockopt(socket_.get(), SOL_SOCKET, option, &time, sizeof time);
      current = wanted;
    }
    const ssize_t count = call();
    if (cancelled_)
      return std::unexpected(StreamError::cancelled);
    if (count >= 0)
      return static_cast<std::size_t>(count);
    if (errno != EAGAIN && errno != EINTR)
      return std::unexpected(StreamError::failed);
  }
}

void SocketStream::finishOutput() { ::shutdown(socket_.get(), SHUT_WR); }

void SocketStream::cancel() {
  cancelled_ = true;
  ::shutdown(socket_.get(), SHUT_RDWR);
}

} // namespace fennick
