#include "FennickCore/Platform/Network/ClientSocket.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace fennick {

namespace {

FileDescriptor timerUntil(Uptime deadline) {
  FileDescriptor timer(::timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK));
  const auto moment =
      std::max(deadline.time_since_epoch(), UptimeClock::duration(1)); // 0 would disarm the timer
  const auto seconds = std::chrono::floor<std::chrono::seconds>(moment);
  const itimerspec once{.it_interval = {},
                        .it_value = {.tv_sec = seconds.count(), .tv_nsec = (moment - seconds).count()}};
  if (::timerfd_settime(timer.get(), TFD_TIMER_ABSTIME, &once, nullptr) != 0)
    timer.reset();
  return timer;
}

} // namespace

ClientSocket::ClientSocket(FileDescriptor socket, FileDescriptor deadline, FileDescriptor wakeup)
    : socket_(std::move(socket)), deadline_(std::move(deadline)), wakeup_(std::move(wakeup)) {}

IOResult<ClientSocket> ClientSocket::make(Uptime deadline) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket.isOpen())
    return lastFailure();
  FileDescriptor wakeup(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!wakeup.isOpen())
    return lastFailure();
  FileDescriptor timer = timerUntil(deadline);
  if (!timer.isOpen())
    return lastFailure();
  return ClientSocket(std::move(socket), std::move(timer), std::move(wakeup));
}

IOResult<void> ClientSocket::connect(const std::string &host, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  if (::inet_pton(AF_INET, host.c_str(), &address.sin_addr) != 1)
    return failure(EINVAL);
  if (::connect(socket_.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0)
    return {};
  if (errno != EINPROGRESS)
    return lastFailure();
  if (const auto ended = await(POLLOUT); !ended)
    return ended;
  int error = 0;
  socklen_t length = sizeof error;
  if (::getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &error, &length) != 0)
    return lastFailure();
  return error == 0 ? IOResult<void>() : failure(error);
}

IOResult<void> ClientSocket::send(std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    if (const auto ready = await(POLLOUT); !ready)
      return ready;
    const ssize_t count =
        retried([&] { return ::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL); });
    if (count < 0 && errno != EAGAIN)
      return lastFailure();
    bytes = bytes.subspan(static_cast<std::size_t>(std::max(count, ssize_t{0})));
  }
  return {};
}

IOResult<std::size_t> ClientSocket::receive(std::span<std::byte> into) {
  while (true) {
    if (const auto ready = await(POLLIN); !ready)
      return std::unexpected(ready.error());
    const ssize_t count = retried([&] { return ::recv(socket_.get(), into.data(), into.size(), 0); });
    if (count >= 0)
      return static_cast<std::size_t>(count);
    if (errno != EAGAIN)
      return lastFailure();
  }
}

void ClientSocket::cancel() { ::eventfd_write(wakeup_.get(), 1); }

// Waits until the socket has `events` or an error. Events count even if the deadline has passed meanwhile.
IOResult<void> ClientSocket::await(short events) const {
  std::array<pollfd, 3> waiting{pollfd{.fd = wakeup_.get(), .events = POLLIN, .revents = 0},
                                pollfd{.fd = socket_.get(), .events = events, .revents = 0},
                                pollfd{.fd = deadline_.get(), .events = POLLIN, .revents = 0}};
  retried([&] { return ::poll(waiting.data(), waiting.size(), -1); });
  if (waiting[0].revents != 0)
    return failure(ECANCELED);
  return waiting[1].revents != 0 ? IOResult<void>() : failure(ETIME);
}

} // namespace fennick
