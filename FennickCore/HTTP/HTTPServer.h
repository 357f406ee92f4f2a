#pragma once

#include "FennickCore/HTTP/HTTPConnection.h"
#include "FennickCore/HTTP/HTTPLimits.h"
#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/Platform/Network/ListeningSocket.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Platform/Threads/ThreadCache.h"

#include <condition_variable>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <variant>
#include <vector>

namespace fennick {

// Every port of the range was taken; `tried` lists them in order. Choosing another preferred port helps.
struct NoFreePort {
  std::vector<std::uint16_t> tried;
  bool operator==(const NoFreePort &) const = default;
};

// The system refused to listen for another reason; `message` is its text.
struct ListenerFailed {
  std::string message;
  bool operator==(const ListenerFailed &) const = default;
};

using HTTPServerError = std::variant<NoFreePort, ListenerFailed>;

// Returns the error as a message for the user.
[[nodiscard]] std::string description(const HTTPServerError &error);

// Owns the listening socket, admits or refuses each connection and keeps the table of open ones. The listener
// has a thread of its own; connections run on threads of a small cache.
//
// `start`, `stop`, `close` and the destructor: one thread at a time, never a connection's own. `port`: any
// thread. Handler, limiter and clock are borrowed and outlive the server.
class HTTPServer {
public:
  HTTPServer(HTTPRequestHandler &handler, const HTTPLimits &limits, RateLimiter &rateLimiter,
             const Clock &clock);
  ~HTTPServer();

  // Listens on the first free port of preferredPort, preferredPort + 1, … up to `attempts` ports and port
  // 65535, and returns it. A preferred port of 0 lets the system choose. Any failure other than a taken port
  // ends the search. Does not block.
  [[nodiscard]] std::expected<std::uint16_t, HTTPServerError> start(std::uint16_t preferredPort,
                                                                    int attempts);

  // Ends the listener and every connection and returns when all of them have ended and aborted uploads are
  // cleaned up. Does nothing if the server is not running.
  void stop();
  // Releases the port and disconnects every connection without waiting for them to end; `stop` waits.
  void close();

  [[nodiscard]] std::optional<std::uint16_t> port() const;

private:
  void run(ListeningSocket listener);
  void acceptConnections();
  void admit(AcceptedSocket accepted);
  std::optional<std::uint64_t> enroll(const std::shared_ptr<HTTPConnection> &connection);
  void withdraw(std::uint64_t identity);
  void serve(std::uint64_t identity, const std::shared_ptr<HTTPConnection> &connection);
  std::shared_ptr<HTTPConnection> makeConnection(AcceptedSocket accepted);

  HTTPRequestHandler &handler_;
  const HTTPLimits limits_;
  RateLimiter &rateLimiter_;
  const Clock &clock_;

  std::unique_ptr<ListeningSocket> listener_; // replaced only while no listener thread runs
  std::jthread listenerThread_;

  mutable Mutex lock_;
  std::condition_variable idle_;
  std::unordered_map<std::uint64_t, std::shared_ptr<HTTPConnection>> connections_ GUARDED_BY(lock_);
  std::uint64_t lastIdentity_ GUARDED_BY(lock_) = 0;
  std::size_t serving_ GUARDED_BY(lock_) = 0; // connections whose thread has not returned yet
  std::optional<std::uint16_t> port_ GUARDED_BY(lock_);

  ThreadCache threads_; // last: its threads end before anything above is destroyed
};

} // namespace fennick
