#pragma once

#include "FennickCore/Network/FirewallFinding.h"

#include <string_view>

// Reads the settings of ufw, the firewall of Ubuntu and its relatives, as far as ordinary users may read
// them: its rules are for root only. Any text is accepted. Pure; any thread.
namespace fennick::FirewallUfw {

// Returns whether the content of ufw.conf turns the firewall on.
[[nodiscard]] bool isEnabled(std::string_view configuration);

// Returns `open` if the content of /etc/default/ufw lets in what no rule refuses, otherwise `unknown`.
[[nodiscard]] FirewallFinding::Port port(std::string_view defaults);

} // namespace fennick::FirewallUfw
