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

// Receives the body of one request. Called by one connection, one call at a time, on that connection's
// thread.
class HTTPBodySink {
public:
  virtual ~HTTPBodySink() = default;
  // Receives the next piece of the body; `bytes` is borrowed for the call. After a failure only `abort` is
  // called.
  [[nodiscard]] virtual IOResult<void> write(std::span<const std::byte> bytes) = 0;
  // Called once after the last byte. Returns the response to send.
  [[nodiscard]] virtual HTTPResponse finish() = 0;
  // Called instead of `finish` if the body cannot be completed (failed write, time-out, closed connection).
  // Discards what was received.
  virtual void abort() = 0;
};

// Sends the response now.
struct HTTPRespond {
  HTTPResponse response;
};

// Sends the response now and counts the request as a failure of the remote address.
struct HTTPReject {
  enum class Failure {
    counted,
    alreadyCounted // part of a failure that was counted before
  };
  HTTPResponse response;
  Failure failure = Failure::counted;
};

// Receives exactly `expectedBytes` of body into `sink`, then sends the response that it returns.
struct HTTPReceive {
  std::int64_t expectedBytes;
  std::unique_ptr<HTTPBodySink> sink;
};

using HTTPRouteDecision = std::variant<HTTPRespond, HTTPReject, HTTPReceive>;

// Decides what to do with a request. Called by several threads at once.
class HTTPRequestHandler {
public:
  virtual ~HTTPRequestHandler() = default;
  // `remote` is the peer's address text.
  [[nodiscard]] virtual HTTPRouteDecision route(const HTTPRequestHead &head, const std::string &remote) = 0;
};

} // namespace fennick
