#pragma once

#include "FennickCore/Network/FirewallFinding.h"
#include "FennickCore/Network/FirewallRules.h"
#include "FennickCore/Platform/Network/Firewalld.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace fennick {

// Finds out whether a firewall is active on this computer and lets phones in, as far as an ordinary user may
// see, and words the command that opens the port. It only looks: nothing is ever opened or changed. Any
// thread; it reads a few files and asks the bus, so that an answer takes up to two seconds.
//
// Of several that are active firewalld is told, then ufw, then nftables. What the firewall's own settings
// leave open, and what hides from the user, is `unknown`. Not seen are rules that were loaded by hand, and a
// service of firewalld that happens to include the port.
class FirewallFinder {
public:
  struct Sources {
    std::filesystem::path root; // what "/" is
    std::function<std::optional<FirewalldAnswers>(std::uint16_t port, const std::string &interface)>
        firewalld;

    [[nodiscard]] static Sources system();
  };

  explicit FirewallFinder(Sources sources) : sources_(std::move(sources)) {}

  // With regard to TCP over IPv4 that comes to `port` by `interface`.
  [[nodiscard]] FirewallFinding find(std::uint16_t port, const std::string &interface) const;

private:
  [[nodiscard]] std::optional<FirewallFinding> firewalld(const Arrival &arrival) const;
  [[nodiscard]] std::optional<FirewallFinding> ufw(const Arrival &arrival) const;
  [[nodiscard]] std::optional<FirewallFinding> nftables(const Arrival &arrival) const;
  [[nodiscard]] std::optional<std::string> read(const char *file) const;

  const Sources sources_;
};

} // namespace fennick
