#pragma once

#include "FennickCore/HTTP/HTTPRequestHandler.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fennick {

// Compares the key of a request with the current one and distinguishes earlier keys from guesses: after the
// key was changed, an open page sends several requests with the old one before it learns of the change. Any
// thread; guarded by its own lock.
class KeyCheck {
public:
  struct Keys {
    std::function<std::string()> current;
    std::function<bool(std::string_view key)> wasValid; // earlier in this run
  };

  explicit KeyCheck(Keys keys) : keys_(std::move(keys)) {}

  [[nodiscard]] bool isCurrent(const HTTPRequestHead &head) const;
  // Returns how a rejection for the wrong key in `head` counts against `remote`: requests with a formerly
  // valid key count once in 10 s, all others count each time.
  [[nodiscard]] HTTPReject::Failure failure(const HTTPRequestHead &head, const std::string &remote,
                                            Uptime now);

private:
  const Keys keys_;
  Mutex lock_;
  std::unordered_map<std::string, Uptime> counted_ GUARDED_BY(lock_); // when a former key was counted last
};

} // namespace fennick
