#pragma once

#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/Platform/Mutex.h"

#include <atomic>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace fennick::test {

// What became of the bodies that sinks were given. Any thread.
struct BodyRecord {
  std::atomic<int> writes = 0;
  std::atomic<int> finishes = 0;
  std::atomic<int> aborts = 0;
  int failingWrite = 0;                                      // the number of the write that fails; 0 for none
  std::function<void()> onWrite;                             // runs before each write
  HTTPResponse answer = HTTPResponse::text(200, "received"); // what `finish` gives

  void append(std::string_view bytes) {
    const Locked locked(lock_);
    body_ += bytes;
  }
  [[nodiscard]] std::string body() const {
    const Locked locked(lock_);
    return body_;
  }

private:
  mutable Mutex lock_;
  std::string body_ GUARDED_BY(lock_);
};

class RecordingSink final : public HTTPBodySink {
public:
  explicit RecordingSink(BodyRecord &record) : record_(record) {}

  IOResult<void> write(std::span<const std::byte> bytes) override {
    if (record_.onWrite)
      record_.onWrite();
    if (++record_.writes == record_.failingWrite)
      return std::unexpected(std::make_error_code(std::errc::no_space_on_device));
    record_.append({reinterpret_cast<const char *>(bytes.data()), bytes.size()});
    return {};
  }
  HTTPResponse finish() override {
    ++record_.finishes;
    return record_.answer;
  }
  void abort() override { ++record_.aborts; }

private:
  BodyRecord &record_;
};

// Takes the body of a POST and answers everything else, unless told otherwise; remembers who asked for what.
// Any thread.
class RecordingHandler final : public HTTPRequestHandler {
public:
  struct Request {
    HTTPRequestHead head;
    std::string remote;
    bool operator==(const Request &) const = default;
  };

  BodyRecord record;
  std::function<HTTPRouteDecision(const HTTPRequestHead &)> decide; // instead of the ordinary decision

  HTTPRouteDecision route(const HTTPRequestHead &head, const std::string &remote) override {
    {
      const Locked locked(lock_);
      requests_.push_back({head, remote});
    }
    if (decide)
      return decide(head);
    if (head.method == "POST")
      return receive(head.contentLength().value_or(0));
    return HTTPRespond{HTTPResponse::text(200, "answer")};
  }

  [[nodiscard]] HTTPReceive receive(std::int64_t bytes) {
    return {.expectedBytes = bytes, .sink = std::make_unique<RecordingSink>(record)};
  }
  [[nodiscard]] std::vector<Request> requests() const {
    const Locked locked(lock_);
    return requests_;
  }

private:
  mutable Mutex lock_;
  std::vector<Request> requests_ GUARDED_BY(lock_);
};

} // namespace fennick::test
