#pragma once

#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"
#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <variant>

namespace fennick {

// Takes the body of one request. Called by one connection, one call at a time, on that connection's thread.
class HTTPBodySink {
public:
  virtual ~HTTPBodySink() = default;
  // The next piece of the body; `bytes` is borrowed for the call. After a failure only `abort` follows.
  [[nodiscard]] virtual IOResult<void> write(std::span<const std::byte> bytes) = 0;
  // Called once, after the last byte; gives the response to send.
  [[nodiscard]] virtual HTTPResponse finish() = 0;
  // Called instead when the body cannot be completed (failed write, time-out, peer gone): discards what it
  // has.
  virtual void abort() = 0;
};

// Answer now.
struct HTTPRespond {
  HTTPResponse response;
};

// Answer now, and count the request as a failure of the remote address.
struct HTTPReject {
  enum class Failure {
    counted,
    alreadyCounted // it belongs to a failure that was counted before
  };
  HTTPResponse response;
  Failure failure = Failure::counted;
};

// Read exactly `expectedBytes` of body into `sink`, then answer with what it returns.
struct HTTPReceive {
  std::int64_t expectedBytes;
  std::unique_ptr<HTTPBodySink> sink;
};

using HTTPRouteDecision = std::variant<HTTPRespond, HTTPReject, HTTPReceive>;

// Decides what to do with a request. Called on the threads of all connections at once.
class HTTPRequestHandler {
public:
  virtual ~HTTPRequestHandler() = default;
  // `remote` is the peer's address text.
  [[nodiscard]] virtual HTTPRouteDecision route(const HTTPRequestHead &head, const std::string &remote) = 0;
};

} // namespace fennick
