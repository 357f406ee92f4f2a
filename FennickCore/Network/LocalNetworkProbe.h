#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace fennick {

// Checks that the receiving service answers at an address, by asking it for its health over TCP, as a phone
// would. A probe runs on a thread of its own ("fennick.probe").
class LocalNetworkProbe {
  struct State;

public:
  struct Outcome {
    enum class Kind { unreachable, reachable, timeout };
    Kind kind = Kind::unreachable;
    // Of `unreachable`: the system's words, "bad port", or "bad response" where the first bytes of the answer
    // do not begin with "HTTP/1.1 200".
    std::string message{};

    bool operator==(const Outcome &) const = default;
  };

  // Begins to ask `host` (dotted IPv4). `done` is called exactly once, on the probe's thread or, for port 0
  // and where the system grants no socket or thread, before this returns; it must not destroy the probe.
  // `timeout` runs from this call to the first bytes of the answer, suspended time included.
  [[nodiscard]] static std::unique_ptr<LocalNetworkProbe>
  probe(const std::string &host, std::uint16_t port, Seconds timeout, std::function<void(Outcome)> done);

  // Gives up a probe under way; `done` is not called any more once this has returned.
  ~LocalNetworkProbe();
  LocalNetworkProbe(const LocalNetworkProbe &) = delete;
  LocalNetworkProbe &operator=(const LocalNetworkProbe &) = delete;

  explicit LocalNetworkProbe(std::unique_ptr<State> state); // called by `probe` alone

private:
  std::unique_ptr<State> state_; // none when there was nothing to begin
};

} // namespace fennick
