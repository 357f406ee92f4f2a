#include "FennickCore/Platform/Network/ListeningSocket.h"

#include <fcntl.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace fennick {

namespace {

constexpr int kBacklog = 128; // more than the server ever serves at once

std::unexpected<std::error_code> lastFailure() {
  return std::unexpected(std::error_code(errno, std::generic_category()));
}

FileDescriptor openSpare() { return FileDescriptor(::open("/dev/null", O_RDONLY | O_CLOEXEC)); }

FileDescriptor makeSocket(int family) {
  FileDescriptor socket(::socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int on = 1;
  const int off = 0;
  if (socket.isOpen())
    ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (socket.isOpen() && family == AF_INET6)
    ::setsockopt(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
  return socket;
}

int bindAny(int socket, int family, std::uint16_t port) {
  if (family == AF_INET6) {
    sockaddr_in6 address{};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_any;
    address.sin6_port = htons(port);
    return ::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address);
  }
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_ANY);
  address.sin_port = htons(port);
  return ::bind(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address);
}

IOResult<FileDescriptor> listenOn(int family, std::uint16_t port) {
  FileDescriptor socket = makeSocket(family);
  if (!socket.isOpen() || bindAny(socket.get(), family, port) != 0 || ::listen(socket.get(), kBacklog) != 0)
    return lastFailure();
  return socket;
}

bool meansNoIPv6(const std::error_code &error) {
  return error.value() == EAFNOSUPPORT || error.value() == EADDRNOTAVAIL;
}

std::uint16_t boundPort(int socket) {
  sockaddr_storage address{};
  socklen_t length = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length) != 0)
    return 0;
  in_port_t port = 0;
  // sin_port and sin6_port lie at the same offset.
  std::memcpy(&port, reinterpret_cast<const char *>(&address) + offsetof(sockaddr_in, sin_port), sizeof port);
  return ntohs(port);
}

std::string addressText(const sockaddr_storage &address, socklen_t length) {
  std::array<char, NI_MAXHOST> text{};
  const auto *raw = reinterpret_cast<const sockaddr *>(&address);
  if (::getnameinfo(raw, length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) != 0)
    return {};
  std::string result = text.data();
  constexpr std::string_view kMapped = "::ffff:";
  if (result.starts_with(kMapped) && result.find('.') != std::string::npos)
    return result.substr(kMapped.size());
  return result;
}

// Returns whether the listening socket itself failed. Other errors concern one connection, which is over
// already.
bool isBroken(int error) { return error == EBADF || error == EINVAL || error == ENOTSOCK; }

bool outOfDescriptors(int error) {
  return error == EMFILE || error == ENFILE || error == ENOBUFS || error == ENOMEM;
}

} // namespace

ListeningSocket::ListeningSocket(FileDescriptor socket, FileDescriptor wakeup, std::uint16_t port)
    : socket_(std::move(socket)), wakeup_(std::move(wakeup)), spare_(openSpare()), port_(port) {}

IOResult<ListeningSocket> ListeningSocket::open(std::uint16_t port) {
  auto socket = listenOn(AF_INET6, port);
  if (!socket && meansNoIPv6(socket.error()))
    socket = listenOn(AF_INET, port);
  if (!socket)
    return std::unexpected(socket.error());
  FileDescriptor wakeup(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!wakeup.isOpen())
    return lastFailure();
  const std::uint16_t bound = boundPort(socket->get());
  return ListeningSocket(std::move(*socket), std::move(wakeup), bound);
}

std::optional<AcceptedSocket> ListeningSocket::accept() {
  while (true) {
    std::array<pollfd, 2> waiting{pollfd{.fd = wakeup_.get(), .events = POLLIN, .revents = 0},
                                  pollfd{.fd = socket_.get(), .events = POLLIN, .revents = 0}};
    ::poll(waiting.data(), waiting.size(), -1);
    if (waiting[0].revents != 0)
      return std::nullopt;
    sockaddr_storage address{};
    socklen_t length = sizeof address;
    FileDescriptor socket(
        ::accept4(socket_.get(), reinterpret_cast<sockaddr *>(&address), &length, SOCK_CLOEXEC));
    if (socket.isOpen())
      return AcceptedSocket{std::move(socket), addressText(address, length)};
    if (isBroken(errno))
      return std::nullopt;
    if (outOfDescriptors(errno))
      refuseOne();
  }
}

void ListeningSocket::refuseOne() {
  constexpr int kPause = 100; // milliseconds; a system without resources is not kept busy
  spare_.reset();
  const FileDescriptor refused(::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
  spare_ = openSpare();
  pollfd waiting{.fd = wakeup_.get(), .events = POLLIN, .revents = 0};
  if (!refused.isOpen())
    ::poll(&waiting, 1, kPause);
}

void ListeningSocket::wake() { ::eventfd_write(wakeup_.get(), 1); }

} // namespace fennick
