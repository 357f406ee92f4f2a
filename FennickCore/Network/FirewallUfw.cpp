#include "FennickCore/Network/FirewallUfw.h"

#include "FennickCore/Support/Text.h"

#include <ranges>
#include <string>

namespace fennick::FirewallUfw {

namespace {

using Port = FirewallFinding::Port;

// Returns the value of `key` in lower case without quotes, or an empty text. Of several lines with the same
// key the last one counts.
std::string setting(std::string_view text, std::string_view key) {
  std::string value;
  for (const auto piece : std::views::split(text, '\n')) {
    const std::string_view line(piece.begin(), piece.end());
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

} // namespace

bool isEnabled(std::string_view configuration) { return setting(configuration, "enabled") == "yes"; }

Port port(std::string_view defaults) {
  return setting(defaults, "default_input_policy") == "accept" ? Port::open : Port::unknown;
}

} // namespace fennick::FirewallUfw
