#include "tests/Support/LoopbackClient.h"

#include <gtest/gtest.h>
#include <netdb.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>

namespace fennick::test {

LoopbackClient::LoopbackClient(const std::string &address, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo *found = nullptr;
  if (::getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &found) != 0)
    return;
  socket_ = FileDescriptor(::socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const timeval patience{.tv_sec = 60, .tv_usec = 0};
  ::setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  connected_ = ::connect(socket_.get(), found->ai_addr, found->ai_addrlen) == 0;
  ::freeaddrinfo(found);
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

} // namespace fennick::test
