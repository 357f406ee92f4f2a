#pragma once

#include "FennickCore/HTTP/HTTPLimits.h"
#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/Platform/Network/ByteStream.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace fennick {

// Serves exactly one request on one accepted connection and then closes it: reads the head, asks the handler,
// receives the body into a sink or sends a file, and sends one response. A peer that is too slow or exceeds
// the lifetime is disconnected without a response.
//
// Runs on the thread that calls `start`; only `close` may be called from other threads. Handler, limiter and
// clock are borrowed and outlive it.
class HTTPConnection {
public:
  HTTPConnection(std::unique_ptr<ByteStream> stream, std::string remote, HTTPRequestHandler &handler,
                 const HTTPLimits &limits, RateLimiter &rateLimiter, const Clock &clock);

  // Called once, on the serving thread, when the connection is over and before its socket is closed. Set it
  // before `start`.
  std::function<void()> onClose;

  // Serves the request and returns when the connection is closed. Once.
  void start();
  // Ends the connection from any thread: its waiting calls fail and a sink that is still receiving is
  // aborted.
  void close();

private:
  std::optional<std::size_t> receiveHead();
  void handleHead(std::string_view bytes, std::span<const std::byte> rest);
  void receiveBody(const HTTPRequestHead &head, HTTPReceive decision, std::span<const std::byte> rest);
  void reject(const HTTPRequestHead &head, const HTTPReject &rejection);
  void drain(Uptime deadline);
  void respond(const HTTPResponse &response);
  bool sendBytes(const HTTPResponse &response, Uptime deadline);
  void sendFile(const HTTPResponse &response, const std::filesystem::path &location);
  bool sendAll(std::span<const std::byte> bytes, Uptime deadline);
  bool sendWhileRead(std::span<const std::byte> bytes);
  bool writeToSink(std::span<const std::byte> bytes);
  [[nodiscard]] Uptime deadlineIn(Seconds length) const;
  void finish();

  std::unique_ptr<ByteStream> stream_;
  const std::string remote_;
  HTTPRequestHandler &handler_;
  const HTTPLimits limits_;
  RateLimiter &rateLimiter_;
  const Clock &clock_;
  Uptime lifetimeEnd_;
  bool isHead_ = false;
  std::span<std::byte> buffer_;        // of the serving thread
  std::unique_ptr<HTTPBodySink> sink_; // set while a body is being received
};

} // namespace fennick
