#pragma once

#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <atomic>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fennick::test {

// Receives the body of a POST and answers everything else by default; records requests and bodies. Any
// thread.
class RecordingHandler final : public HTTPRequestHandler {
public:
  using Request = std::pair<HTTPRequestHead, std::string>; // and the peer's address

  std::function<HTTPRouteDecision(const HTTPRequestHead &)> decide; // instead of the ordinary decision
  std::function<IOResult<void>()> onWrite;                          // before each write; may fail it
  std::atomic<int> finishes = 0;
  std::atomic<int> aborts = 0;

  HTTPRouteDecision route(const HTTPRequestHead &head, const std::string &remote) override {
    {
      const Locked locked(lock_);
      requests_.emplace_back(head, remote);
    }
    if (decide)
      return decide(head);
    if (head.method != "POST")
      return HTTPRespond{HTTPResponse::text(200, "answer")};
    return HTTPReceive{.expectedBytes = head.contentLength().value_or(0),
                       .sink = std::make_unique<Sink>(*this)};
  }
  [[nodiscard]] std::vector<Request> requests() const {
    const Locked locked(lock_);
    return requests_;
  }
  [[nodiscard]] std::string body() const {
    const Locked locked(lock_);
    return body_;
  }

private:
  struct Sink final : HTTPBodySink {
    explicit Sink(RecordingHandler &recorder) : owner(recorder) {}
    IOResult<void> write(std::span<const std::byte> bytes) override {
      if (const auto allowed = owner.onWrite ? owner.onWrite() : IOResult<void>(); !allowed)
        return allowed;
      const Locked locked(owner.lock_);
      owner.body_.append(reinterpret_cast<const char *>(bytes.data()), bytes.size());
      return {};
    }
    HTTPResponse finish() override {
      ++owner.finishes;
      return HTTPResponse::text(200, "received");
    }
    void abort() override { ++owner.aborts; }
    RecordingHandler &owner;
  };

  mutable Mutex lock_;
  std::vector<Request> requests_ GUARDED_BY(lock_);
  std::string body_ GUARDED_BY(lock_);
};

} // namespace fennick::test
