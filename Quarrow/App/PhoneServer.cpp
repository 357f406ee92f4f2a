#include "Quarrow/App/PhoneServer.h"

#include "FennickCore/Platform/System/Log.h"

#include <fmt/format.h>

#include <utility>

namespace quarrow {

namespace {
constexpr int kPortAttempts = 20;
}

// A server with everything that belongs to it. A replaced server exists until its last request has ended.
struct PhoneServer::Server {
  Server(const PhoneServer &owner, std::uint16_t port)
      : preferredPort(port),
        router(owner.providers_, fennick::resourceBundle(), owner.services_.files, owner.services_.incoming,
               owner.services_.clock, owner.services_.activity, &owner.services_.thumbnails),
        http(router, fennick::kServiceLimits, limiter, owner.services_.clock) {}

  const std::uint16_t preferredPort;
  fennick::UploadRouter router;
  fennick::RateLimiter limiter{fennick::kServiceBans};
  fennick::HTTPServer http; // last: its connections use the above
};

PhoneServer::PhoneServer(const Services &services, fennick::UploadRouter::Providers providers,
                         Observer observer)
    : services_(services), providers_(std::move(providers)), observer_(std::move(observer)) {}

PhoneServer::~PhoneServer() { stop(); }

void PhoneServer::start(std::uint16_t preferredPort) {
  retire();
  server_ = std::make_shared<Server>(*this, preferredPort);
  preferredPort_ = preferredPort;
  lifetime_.cancel();
  services_.mainQueue.post(lifetime_.guard([this] { open(*server_); }));
}

void PhoneServer::open(Server &server) {
  observer_.starting();
  fennick::log(fmt::format("starting server on {}", server.preferredPort));
  const auto port = server.http.start(server.preferredPort, kPortAttempts);
  if (!port) {
    fennick::log(fmt::format("server failed {}", description(port.error())));
    return observer_.failed(port.error());
  }
  fennick::log(fmt::format("listening on {}", *port));
  observer_.listening(*port);
}

// Destroys the server on another thread, since a request that processes a picture may take a while to end.
void PhoneServer::retire() {
  if (!server_)
    return;
  server_->http.close();
  if (!retirement_)
    retirement_ = std::make_unique<fennick::SerialQueue>("fennick.http.end");
  retirement_->post([last = std::exchange(server_, nullptr)] { last->http.stop(); });
}

void PhoneServer::forgiveFailures() {
  if (server_)
    server_->limiter.reset();
}

void PhoneServer::stop() {
  lifetime_.cancel();
  if (server_)
    server_->http.stop();
  server_.reset();
  retirement_.reset();
}

} // namespace quarrow
