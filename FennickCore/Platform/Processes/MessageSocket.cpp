#include "FennickCore/Platform/Processes/MessageSocket.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>

namespace fennick {

namespace {

// Space for the one descriptor that a message may carry.
struct Control {
  alignas(cmsghdr) std::array<std::byte, CMSG_SPACE(sizeof(int))> bytes{};
};

// Returns the rest of `timeout` since `started` for poll: milliseconds rounded up, -1 without a limit.
int pollTimeout(std::optional<Seconds> timeout, std::chrono::steady_clock::time_point started) {
  if (!timeout)
    return -1;
  const Seconds left = *timeout - (std::chrono::steady_clock::now() - started);
  constexpr double kMost = std::numeric_limits<int>::max() / 2.0;
  return static_cast<int>(std::clamp(std::ceil(left.count() * 1000), 0.0, kMost));
}

IOResult<void> waitReadable(int fd, std::optional<Seconds> timeout) {
  const auto started = std::chrono::steady_clock::now();
  while (true) {
    pollfd waiting{.fd = fd, .events = POLLIN, .revents = 0};
    const int ready = ::poll(&waiting, 1, pollTimeout(timeout, started));
    if (ready > 0)
      return {};
    if (ready == 0)
      return std::unexpected(std::make_error_code(std::errc::timed_out));
    if (errno != EINTR)
      return lastFailure();
  }
}

// Returns the descriptor that came with a message. The system closes those that do not fit into Control.
FileDescriptor attachedTo(msghdr &message) {
  const cmsghdr *header = CMSG_FIRSTHDR(&message);
  if (header == nullptr || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS ||
      header->cmsg_len < CMSG_LEN(sizeof(int)))
    return {};
  int fd = -1;
  std::memcpy(&fd, CMSG_DATA(header), sizeof fd);
  return FileDescriptor(fd);
}

} // namespace

IOResult<std::pair<MessageSocket, MessageSocket>> MessageSocket::makePair() {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
    return lastFailure();
  return std::pair(MessageSocket(FileDescriptor(ends[0])), MessageSocket(FileDescriptor(ends[1])));
}

IOResult<void> MessageSocket::send(std::span<const std::byte> message, const FileDescriptor *attached) {
  // sendmsg only reads through the pointer.
  iovec piece{.iov_base =
                  const_cast<std::byte *>(message.data()), // NOLINT(cppcoreguidelines-pro-type-const-cast)
              .iov_len = message.size()};
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  Control control;
  if (attached != nullptr) {
    header.msg_control = control.bytes.data();
    header.msg_controllen = control.bytes.size();
    cmsghdr *rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(int));
    const int fd = attached->get();
    std::memcpy(CMSG_DATA(rights), &fd, sizeof fd);
  }
  if (retried([&] { return ::sendmsg(fd_.get(), &header, MSG_NOSIGNAL); }) < 0)
    return lastFailure();
  return {};
}

void MessageSocket::disconnect() const { ::shutdown(fd_.get(), SHUT_RDWR); }

bool MessageSocket::isConnected() const {
  pollfd end{.fd = fd_.get(), .events = 0, .revents = 0};
  return ::poll(&end, 1, 0) == 0;
}

IOResult<MessageSocket::Received> MessageSocket::receive(std::span<std::byte> into,
                                                         std::optional<Seconds> timeout) {
  if (const auto ready = waitReadable(fd_.get(), timeout); !ready)
    return std::unexpected(ready.error());
  iovec piece{.iov_base = into.data(), .iov_len = into.size()};
  Control control;
  msghdr header{};
  header.msg_iov = &piece;
  header.msg_iovlen = 1;
  header.msg_control = control.bytes.data();
  header.msg_controllen = CMSG_LEN(sizeof(int)); // no room for a second one in the padding
  const ssize_t count = retried([&] { return ::recvmsg(fd_.get(), &header, MSG_CMSG_CLOEXEC); });
  if (count < 0 && errno == ECONNRESET)
    return Received{};
  if (count < 0)
    return lastFailure();
  return Received{.bytes = static_cast<std::size_t>(count), .attached = attachedTo(header)};
}

} // namespace fennick
