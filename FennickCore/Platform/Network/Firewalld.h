#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fennick {

// What firewalld, the firewall service of many distributions, reports to ordinary users about a port.
struct FirewalldAnswers {
  std::string zone{};                  // that the interface is in; empty when the service did not say
  std::optional<bool> hasPort{};       // whether the zone lists the port for TCP; absent when it did not say
  std::optional<std::string> target{}; // what happens to other ports of the zone: "default", "ACCEPT", "DROP"
  bool operator==(const FirewalldAnswers &) const = default;
};

// Asks firewalld over the bus at `busAddress`, or the system bus if that is empty. Returns nullopt if the
// service does not run; it is not started, and the user is not asked for a password. Asks about the zone of
// `interface`, or the default zone if the interface has none or is empty. Blocks for at most about
// `patience`; what was not answered by then is absent. Any thread.
[[nodiscard]] std::optional<FirewalldAnswers> askFirewalld(std::uint16_t port, const std::string &interface,
                                                           const std::string &busAddress = {},
                                                           Seconds patience = Seconds(2));

} // namespace fennick
