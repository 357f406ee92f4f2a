#pragma once

#include "FennickCore/Network/FirewallFinding.h"
#include "FennickCore/Platform/Network/Firewalld.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace fennick {

// Finds an active firewall and whether it lets phones in, as far as an ordinary user may see, and words the
// command that opens the port. Changes nothing. Reads a few files and asks the system bus, which takes up to
// two seconds. Any thread.
//
// Reports firewalld before ufw if both are active. The port is `unknown` if the settings that users may read
// do not tell. Rules that were loaded by hand are not seen, nor is a service of firewalld that includes the
// port.
class FirewallFinder {
public:
  struct Sources {
    std::filesystem::path root; // of the file system: "/"
    std::function<std::optional<FirewalldAnswers>(std::uint16_t port, const std::string &interface)>
        firewalld;

    [[nodiscard]] static Sources system();
  };

  explicit FirewallFinder(Sources sources) : sources_(std::move(sources)) {}

  // For TCP over IPv4 that arrives at `port` on `interface`.
  [[nodiscard]] FirewallFinding find(std::uint16_t port, const std::string &interface) const;

private:
  [[nodiscard]] std::optional<FirewallFinding> firewalld(std::uint16_t port,
                                                         const std::string &interface) const;
  [[nodiscard]] std::optional<FirewallFinding> ufw(std::uint16_t port) const;
  [[nodiscard]] std::optional<std::string> read(const char *file) const;

  const Sources sources_;
};

} // namespace fennick
