#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace fennick {

// Checks that the receiving service answers at an address by sending its health request over TCP, as a phone
// would. Each probe has a thread of its own ("fennick.probe").
class LocalNetworkProbe {
  struct State;

public:
  struct Outcome {
    enum class Kind { unreachable, reachable, timeout };
    Kind kind = Kind::unreachable;
    // For `unreachable`: the system's error message, "bad port", or "bad response" if the answer does not
    // begin with "HTTP/1.1 200".
    std::string message{};

    bool operator==(const Outcome &) const = default;
  };

  // Starts a probe of `host` (dotted IPv4). `done` is called exactly once, on the probe's thread, or before
  // this returns for port 0 and if the system grants no socket or thread; it must not destroy the probe.
  // `timeout` runs from this call to the first bytes of the answer and counts suspended time.
  [[nodiscard]] static std::unique_ptr<LocalNetworkProbe>
  probe(const std::string &host, std::uint16_t port, Seconds timeout, std::function<void(Outcome)> done);

  // Cancels a running probe. `done` is not called after this has returned.
  ~LocalNetworkProbe();
  LocalNetworkProbe(const LocalNetworkProbe &) = delete;
  LocalNetworkProbe &operator=(const LocalNetworkProbe &) = delete;

  explicit LocalNetworkProbe(std::unique_ptr<State> state); // called by `probe` alone

private:
  std::unique_ptr<State> state_; // null if there was nothing to start
};

} // namespace fennick
