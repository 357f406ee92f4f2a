#include "FennickCore/Platform/Network/RouteMonitor.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace fennick {

namespace {

FileDescriptor openRouting() {
  FileDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE));
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV4_ROUTE;
  if (socket.isOpen() &&
      ::bind(socket.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
    socket.reset();
  return socket;
}

int pollTimeout(std::optional<Seconds> most) {
  if (!most)
    return -1;
  return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(std::max(*most, Seconds(0))).count());
}

} // namespace

RouteMonitor::RouteMonitor() : routing_(openRouting()), wakeup_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

RouteMonitor::Woken RouteMonitor::awaitChanges(std::optional<Seconds> most) {
  std::array<pollfd, 2> waiting{pollfd{.fd = wakeup_.get(), .events = POLLIN, .revents = 0},
                                pollfd{.fd = routing_.get(), .events = POLLIN, .revents = 0}};
  retried([&] { return ::poll(waiting.data(), waiting.size(), pollTimeout(most)); });
  if (waiting[0].revents != 0)
    return Woken::interrupted;
  if (waiting[1].revents == 0)
    return Woken::timeout;
  forgetChanges();
  return Woken::changes;
}

void RouteMonitor::interrupt() { ::eventfd_write(wakeup_.get(), 1); }

// ENOBUFS appears between the messages where the kernel dropped some.
void RouteMonitor::forgetChanges() {
  std::byte start{}; // the rest of each message is dropped
  while (::recv(routing_.get(), &start, sizeof start, 0) >= 0 || errno == ENOBUFS || errno == EINTR) {
  }
}

} // namespace fennick
