#include "tests/Support/LoopbackClient.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>

namespace fennick::test {

LoopbackClient::LoopbackClient(const std::string &address, std::uint16_t port) {
  const bool isIPv6 = address.find(':') != std::string::npos;
  socket_ = FileDescriptor(::socket(isIPv6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const timeval patience{.tv_sec = 60, .tv_usec = 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  connected_ = isIPv6 ? connectIPv6(address, port) : connectIPv4(address, port);
}

bool LoopbackClient::send(std::string_view text) {
  return ::send(socket_.get(), text.data(), text.size(), MSG_NOSIGNAL) == std::ssize(text);
}

std::string LoopbackClient::readToEnd() {
  std::string all;
  std::array<char, 4096> chunk{};
  while (true) {
    const ssize_t count = ::recv(socket_.get(), chunk.data(), chunk.size(), 0);
    if (count < 0 && errno == EAGAIN)
      ADD_FAILURE() << "the server neither answered nor closed";
    if (count <= 0)
      return all;
    all.append(chunk.data(), static_cast<std::size_t>(count));
  }
}

bool LoopbackClient::connectIPv4(const std::string &text, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  return ::inet_pton(AF_INET, text.c_str(), &address.sin_addr) == 1 &&
         ::connect(socket_.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

bool LoopbackClient::connectIPv6(const std::string &text, std::uint16_t port) {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_port = htons(port);
  return ::inet_pton(AF_INET6, text.c_str(), &address.sin6_addr) == 1 &&
         ::connect(socket_.get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
}

} // namespace fennick::test
