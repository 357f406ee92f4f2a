#include "FennickCore/Network/FirewallUfw.h"

#include "FennickCore/Support/Text.h"

#include <ranges>
#include <string>
#include <vector>

namespace fennick::FirewallUfw {

namespace {

using Port = FirewallFinding::Port;

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (const auto piece : std::views::split(text, separator))
    if (!piece.empty())
      pieces.emplace_back(piece.begin(), piece.end());
  return pieces;
}

// Keys and values in any case, with or without quotes; of lines with the same key the last one counts.
std::string setting(std::string_view text, std::string_view key) {
  std::string value;
  for (const auto line : split(text, '\n')) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || lowerCased(trimmed(line.substr(0, equals))) != key)
      continue;
    std::string_view given = line.substr(equals + 1);
    given = given.substr(0, given.find_first_of(" \t\r#"));
    if (given.starts_with('"') || given.starts_with('\''))
      given.remove_prefix(1);
    value = lowerCased(given.substr(0, given.find_first_of("\"'")));
  }
  return value;
}

// "allow", "deny_log-all"; nothing for rules on forwarding and what is not known.
std::optional<Port> decisionOf(std::string_view action) {
  const auto verb = action.substr(0, action.find('_'));
  if (verb == "allow")
    return Port::open;
  if (verb == "deny" || verb == "reject")
    return Port::closed;
  return verb == "limit" ? std::optional(Port::unknown)
                         : std::nullopt; // a few connections pass, a burst does not
}

Applies portsApply(std::string_view ports, const Arrival &arrival) {
  Applies any = ports == "any" ? Applies::yes : Applies::no;
  for (const auto range : split(ports, ','))
    any = std::max(any, portApplies(range, ':', arrival));
  return any;
}

Applies anywhereApplies(std::string_view addresses) {
  return addresses == "0.0.0.0/0" || addresses == "any" ? Applies::yes : Applies::perhaps;
}

// "in", "out", "in_eth0".
Applies directionApplies(std::string_view direction, const Arrival &arrival) {
  if (!direction.starts_with("in"))
    return Applies::no;
  const std::size_t named = direction.find('_');
  return named == std::string_view::npos ? Applies::yes
                                         : interfaceApplies(direction.substr(named + 1), arrival);
}

// The fields are action, protocol, port, address, the source's port and address, with names of applications
// for both ports in some, and the direction, which old versions leave out; a comment may follow.
void meetRule(std::string_view tuple, const Arrival &arrival, FirewallWalk &walk) {
  auto fields = split(tuple, ' ');
  std::erase_if(fields, [](std::string_view field) { return field.starts_with("comment="); });
  if (fields.size() < 6)
    return;
  const auto decision = decisionOf(fields[0]);
  if (!decision || (fields[1] != "any" && fields[1] != "tcp"))
    return;
  const bool hasDirection = fields.size() % 2 == 1;
  walk.meet(std::min({portsApply(fields[2], arrival), anywhereApplies(fields[3]),
                      fields[4] == "any" ? Applies::yes : Applies::perhaps, anywhereApplies(fields[5]),
                      hasDirection ? directionApplies(fields.back(), arrival) : Applies::yes}),
            *decision);
}

} // namespace

bool isEnabled(std::string_view configuration) { return setting(configuration, "enabled") == "yes"; }

Port port(std::string_view defaults, std::optional<std::string_view> rules, const Arrival &arrival) {
  constexpr std::string_view kTuple = "### tuple ###";
  const bool isOpen = setting(defaults, "default_input_policy") == "accept";
  if (!rules)
    return isOpen ? Port::open : Port::unknown;
  FirewallWalk walk;
  for (const auto line : split(*rules, '\n'))
    if (line.starts_with(kTuple))
      meetRule(trimmed(line.substr(kTuple.size())), arrival, walk);
  return walk.outcome(isOpen ? Port::open : Port::closed);
}

} // namespace fennick::FirewallUfw
