#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace fennick::test {

// A client on this computer; `address` may be IPv4, IPv6 or IPv4 mapped into IPv6. A server that hangs fails
// the test.
class LoopbackClient {
public:
  LoopbackClient(const std::string &address, std::uint16_t port);

  [[nodiscard]] bool isConnected() const { return connected_; }
  // Returns whether the whole text could be sent.
  bool send(std::string_view text);
  // Reads until the server closes the connection.
  std::string readToEnd();
  std::string ask(std::string_view request) { return send(request) ? readToEnd() : std::string(); }

private:
  FileDescriptor socket_;
  bool connected_ = false;
};

} // namespace fennick::test
