#pragma once

#include <string>
#include <string_view>

namespace fennick {

// What is known about this computer's firewall and the port that phones connect to.
struct FirewallFinding {
  enum class Kind {
    none, // none was found to be active
    ufw,
    firewalld
  };
  enum class Port { open, closed, unknown };

  Kind kind = Kind::none;
  Port port = Port::unknown; // `open` if there is no firewall
  // The command that opens the port: "sudo ufw allow 8000/tcp". Empty without a firewall and if the port is
  // open.
  std::string command{};

  // Returns whether the firewall blocks phones or may block them.
  [[nodiscard]] bool mayBlock() const { return kind != Kind::none && port != Port::open; }
  bool operator==(const FirewallFinding &) const = default;
};

// The names of the cases: "ufw", "closed".
[[nodiscard]] std::string_view rawValue(FirewallFinding::Kind kind);
[[nodiscard]] std::string_view rawValue(FirewallFinding::Port port);

} // namespace fennick
