#pragma once

#include "FennickCore/Platform/Clock.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace fennick {

// Checks that the receiving service answers at an address, by asking it for its health over TCP, as a phone
// would. A probe runs on a thread of its own ("fennick.probe").
class LocalNetworkProbe {
public:
  struct Outcome {
    enum class Kind { unreachable, reachable, timeout };
    Kind kind = Kind::unreachable;
    std::string message{}; // of `unreachable`: the system's words, "bad port" or "bad response"

    bool operator==(const Outcome &) const = default;
  };

  // Begins to ask `host` (dotted IPv4). `done` is called exactly once, on the probe's thread or, for a port
  // that is none, before this returns; it must not destroy the probe.
  [[nodiscard]] static std::unique_ptr<LocalNetworkProbe>
  probe(const std::string &host, std::uint16_t port, Seconds timeout, std::function<void(Outcome)> done);

  // Gives up a probe under way; `done` is not called any more once this has returned.
  ~LocalNetworkProbe();
  LocalNetworkProbe(const LocalNetworkProbe &) = delete;
  LocalNetworkProbe &operator=(const LocalNetworkProbe &) = delete;

private:
  LocalNetworkProbe();
  struct State;
  std::unique_ptr<State> state_;
};

} // namespace fennick
