#include "bench/Client.h"

#include <fmt/format.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t kChunk = std::size_t{1} << 20;

const std::vector<char> &bodyChunk() {
  static const std::vector<char> chunk = [] {
    std::vector<char> bytes(kChunk, 'x');
    const std::array<unsigned char, 4> jpeg{0xFF, 0xD8, 0xFF, 0xE0};
    std::ranges::copy(jpeg, reinterpret_cast<unsigned char *>(bytes.data()));
    return bytes;
  }();
  return chunk;
}

[[noreturn]] void fail(const std::string &what) {
  fmt::print(stderr, "bench: {}\n", what);
  std::exit(EXIT_FAILURE);
}

sockaddr_in loopback(std::uint32_t address, std::uint16_t port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  result.sin_addr.s_addr = htonl(address);
  return result;
}

void sendAll(int socket, const char *data, std::size_t size) {
  while (size > 0) {
    const ssize_t count = ::send(socket, data, size, MSG_NOSIGNAL);
    if (count <= 0)
      fail("the server closed the connection early");
    data += count;
    size -= static_cast<std::size_t>(count);
  }
}

// Reads until the server has closed the connection.
std::string readAll(const fennick::FileDescriptor &socket) {
  std::string answer;
  std::array<char, 65536> buffer{};
  while (true) {
    const ssize_t count = ::recv(socket.get(), buffer.data(), buffer.size(), 0);
    if (count <= 0)
      return answer;
    answer.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

} // namespace

fennick::FileDescriptor connectTo(std::uint16_t port) { return connectAs(0, port); }

fennick::FileDescriptor connectAs(int phone, std::uint16_t port) {
  fennick::FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_in own = loopback(INADDR_LOOPBACK + static_cast<std::uint32_t>(phone), 0);
  const sockaddr_in server = loopback(INADDR_LOOPBACK, port);
  if (::bind(socket.get(), reinterpret_cast<const sockaddr *>(&own), sizeof own) != 0 ||
      ::connect(socket.get(), reinterpret_cast<const sockaddr *>(&server), sizeof server) != 0)
    fail(fmt::format("nothing listens on port {}", port));
  return socket;
}

void sendText(const fennick::FileDescriptor &socket, const std::string &text) {
  sendAll(socket.get(), text.data(), text.size());
}

void sendBody(const fennick::FileDescriptor &socket, std::int64_t bytes) {
  while (bytes > 0) {
    const auto step = std::min<std::int64_t>(bytes, kChunk);
    sendAll(socket.get(), bodyChunk().data(), static_cast<std::size_t>(step));
    bytes -= step;
  }
}

std::string readStatusLine(const fennick::FileDescriptor &socket) {
  const std::string answer = readAll(socket);
  return answer.substr(0, answer.find('\r'));
}

std::string fetch(std::uint16_t port, const std::string &target) {
  const auto socket = connectTo(port);
  sendText(socket, fmt::format("GET {} HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n", target));
  std::string answer = readAll(socket);
  if (!answer.starts_with("HTTP/1.1 200"))
    fail(fmt::format("GET {} was answered {}", target, answer.substr(0, answer.find('\r'))));
  return answer.substr(answer.find("\r\n\r\n") + 4);
}

void upload(std::uint16_t port, const std::string &method, const std::string &target, std::int64_t bytes) {
  const auto socket = connectTo(port);
  sendText(socket, fmt::format("{} {} HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n"
                               "Content-Type: image/jpeg\r\nContent-Length: {}\r\n\r\n",
                               method, target, bytes));
  sendBody(socket, bytes);
  const std::string status = readStatusLine(socket);
  if (!status.starts_with("HTTP/1.1 20"))
    fail(fmt::format("{} {} was answered {}", method, target, status));
}

} // namespace bench
