#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fennick {

// What firewalld, the firewall service of many distributions, tells an ordinary user about a port.
struct FirewalldAnswers {
  std::string zone{};                  // that the interface is in; empty when the service did not say
  std::optional<bool> hasPort{};       // whether the zone lists the port for TCP; absent when it did not say
  std::optional<std::string> target{}; // what becomes of all else in the zone: "default", "ACCEPT", "DROP"
  bool operator==(const FirewalldAnswers &) const = default;
};

// Asks firewalld over the bus at `busAddress`, the system's when that is empty. Returns nullopt if the
// service does not run; it is not started for this, and the user is not asked for a password. The zone is
// that of `interface`, or the default zone when the interface is in none or empty. Blocks, for at most about
// `patience` in all; what has no answer by then stays absent. Any thread.
[[nodiscard]] std::optional<FirewalldAnswers> askFirewalld(std::uint16_t port, const std::string &interface,
                                                           const std::string &busAddress = {},
                                                           Seconds patience = Seconds(2));

} // namespace fennick
