#pragma once

#include "FennickCore/HTTP/HTTPServer.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "FennickCore/Upload/UploadRouter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace quarrow {

// Runs the HTTP server for phones with its router and its limits. A server that is replaced releases its port
// at once and finishes its last requests on a thread of its own ("fennick.http.end"). Main thread.
class PhoneServer {
public:
  struct Observer {
    std::function<void()> starting; // the port is about to be opened
    std::function<void(std::uint16_t port)> listening;
    std::function<void(const fennick::HTTPServerError &error)> failed;
  };
  // All outlive the object.
  struct Services {
    fennick::MainQueue &mainQueue;
    fennick::FileSystem &files;
    fennick::IncomingFolder &incoming;
    const fennick::Clock &clock;
    fennick::UploadActivity &activity;
    fennick::Thumbnails &thumbnails;
  };

  PhoneServer(const Services &services, fennick::UploadRouter::Providers providers, Observer observer);
  ~PhoneServer();
  PhoneServer(const PhoneServer &) = delete;
  PhoneServer &operator=(const PhoneServer &) = delete;

  // Replaces the running server, if any, by one on `preferredPort` or the next free port. The observer is
  // notified later, unless another start or a stop comes first.
  void start(std::uint16_t preferredPort);
  // Ends the service and waits until all requests have ended and aborted uploads are cleaned up.
  void stop();
  // Lifts all bans and forgets all failures.
  void forgiveFailures();
  // The preferred port of the latest start.
  [[nodiscard]] std::optional<std::uint16_t> preferredPort() const { return preferredPort_; }

private:
  struct Server;
  void open(Server &server);
  void retire();

  const Services services_;
  const fennick::UploadRouter::Providers providers_;
  const Observer observer_;
  fennick::Lifetime lifetime_; // cancelled by every start
  std::optional<std::uint16_t> preferredPort_;
  std::shared_ptr<Server> server_;
  std::unique_ptr<fennick::SerialQueue> retirement_; // for servers that were replaced
};

} // namespace quarrow
