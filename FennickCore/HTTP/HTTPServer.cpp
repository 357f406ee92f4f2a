#include "FennickCore/HTTP/HTTPServer.h"

#include "FennickCore/HTTP/PrivateAddress.h"
#include "FennickCore/Platform/System/Log.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <exception>
#include <system_error>

namespace fennick {

namespace {

// Threads kept for the next requests: a page with its calls, or a few uploads at a time.
constexpr std::size_t kIdleThreads = 8;

bool isPortTaken(const std::error_code &error) { return error == std::errc::address_in_use; }

} // namespace

std::string description(const HTTPServerError &error) {
  if (const auto *failed = std::get_if<ListenerFailed>(&error))
    return failed->message;
  const auto &tried = std::get<NoFreePort>(error).tried;
  if (tried.empty())
    return "没有可用的端口";
  if (tried.size() == 1)
    return fmt::format("端口 {} 已被占用", tried.front());
  return fmt::format("端口 {} 到 {} 都已被占用", tried.front(), tried.back());
}

HTTPServer::HTTPServer(HTTPRequestHandler &handler, const HTTPLimits &limits, RateLimiter &rateLimiter,
                       const Clock &clock)
    : handler_(handler), limits_(limits), rateLimiter_(rateLimiter), clock_(clock), threads_(kIdleThreads) {}

HTTPServer::~HTTPServer() { stop(); }

std::expected<std::uint16_t, HTTPServerError> HTTPServer::start(std::uint16_t preferredPort, int attempts) {
  stop();
  NoFreePort taken;
  for (int i = 0; i < attempts && preferredPort + i <= 65535; ++i) {
    const auto candidate = static_cast<std::uint16_t>(preferredPort + i);
    taken.tried.push_back(candidate);
    auto listener = ListeningSocket::open(candidate);
    if (listener) {
      const std::uint16_t bound = listener->port();
      run(std::move(*listener));
      return bound;
    }
    if (!isPortTaken(listener.error()))
      return std::unexpected(ListenerFailed{listener.error().message()});
  }
  return std::unexpected(std::move(taken));
}

void HTTPServer::run(ListeningSocket listener) {
  listener_ = std::make_unique<ListeningSocket>(std::move(listener));
  {
    const Locked locked(lock_);
    port_ = listener_->port();
  }
  listenerThread_ = std::jthread([this] { acceptConnections(); });
}

void HTTPServer::stop() {
  close();
  Locked locked(lock_);
  while (serving_ > 0)
    locked.wait(idle_);
}

void HTTPServer::close() {
  if (!listener_)
    return;
  listener_->wake();
  listenerThread_.join();
  listener_.reset();

  std::unordered_map<std::uint64_t, std::shared_ptr<HTTPConnection>> live;
  {
    const Locked locked(lock_);
    live.swap(connections_);
    port_.reset();
  }
  for (const auto &[identity, connection] : live)
    connection->close();
}

std::optional<std::uint16_t> HTTPServer::port() const {
  const Locked locked(lock_);
  return port_;
}

void HTTPServer::acceptConnections() {
  while (auto accepted = listener_->accept())
    admit(std::move(*accepted));
}

// Refuses a connection by closing its socket without a response, also if there is no thread or memory for it.
void HTTPServer::admit(AcceptedSocket accepted) {
  if (limits_.privateSourcesOnly && !isPrivateAddress(accepted.remote))
    return;
  std::optional<std::uint64_t> identity;
  try {
    const auto connection = makeConnection(std::move(accepted));
    identity = enroll(connection);
    if (!identity)
      return;
    connection->onClose = [this, which = *identity] {
      const Locked locked(lock_);
      connections_.erase(which);
    };
    threads_.run([this, which = *identity, connection] { serve(which, connection); });
  } catch (const std::exception &error) {
    if (identity)
      withdraw(*identity);
    log(error.what());
  }
}

// Adds a connection to the table. Returns nullopt if the table is full.
std::optional<std::uint64_t> HTTPServer::enroll(const std::shared_ptr<HTTPConnection> &connection) {
  const Locked locked(lock_);
  if (static_cast<std::int64_t>(connections_.size()) >= limits_.maxConnections)
    return std::nullopt;
  connections_.emplace(++lastIdentity_, connection);
  ++serving_;
  return lastIdentity_;
}

void HTTPServer::withdraw(std::uint64_t identity) {
  const Locked locked(lock_);
  connections_.erase(identity);
  --serving_;
}

std::shared_ptr<HTTPConnection> HTTPServer::makeConnection(AcceptedSocket accepted) {
  return std::make_shared<HTTPConnection>(std::make_unique<SocketStream>(std::move(accepted.socket), clock_),
                                          std::move(accepted.remote), handler_, limits_, rateLimiter_,
                                          clock_);
}

void HTTPServer::serve(std::uint64_t identity, const std::shared_ptr<HTTPConnection> &connection) {
  try {
    connection->start();
  } catch (const std::exception &error) {
    // Most likely out of memory: this request is lost, but the service continues.
    log(fmt::format("request {} failed: {}", identity, error.what()));
  }
  const Locked locked(lock_);
  if (--serving_ == 0)
    idle_.notify_all();
}

} // namespace fennick
