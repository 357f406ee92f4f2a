#pragma once

#include "FennickCore/Network/FirewallRules.h"

#include <optional>
#include <string_view>

// Reads the files of ufw, the firewall of Ubuntu and its relatives. They may hold anything; what is not
// understood leaves doubt. All are pure; any thread.
namespace fennick::FirewallUfw {

// Whether ufw.conf switches it on.
[[nodiscard]] bool isEnabled(std::string_view configuration);

// What becomes of the arrival by /etc/default/ufw and the rules in user.rules, which only root may read and
// which are otherwise absent.
[[nodiscard]] FirewallFinding::Port port(std::string_view defaults, std::optional<std::string_view> rules,
                                         const Arrival &arrival);

} // namespace fennick::FirewallUfw
