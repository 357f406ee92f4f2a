#pragma once

#include <string>
#include <string_view>

namespace fennick {

// What is known of this computer's firewall with regard to the port that phones come to.
struct FirewallFinding {
  enum class Kind {
    none, // none was found to be active
    ufw,
    firewalld
  };
  enum class Port { open, closed, unknown };

  Kind kind = Kind::none;
  Port port = Port::unknown; // `open` when there is no firewall
  // The command that lets phones in: "sudo ufw allow 8000/tcp". Empty without a firewall and where the
  // port is open.
  std::string command{};

  // Whether it keeps phones out, or perhaps does.
  [[nodiscard]] bool mayBlock() const { return kind != Kind::none && port != Port::open; }
  bool operator==(const FirewallFinding &) const = default;
};

// The names of the cases: "ufw", "closed".
[[nodiscard]] std::string_view rawValue(FirewallFinding::Kind kind);
[[nodiscard]] std::string_view rawValue(FirewallFinding::Port port);

} // namespace fennick
