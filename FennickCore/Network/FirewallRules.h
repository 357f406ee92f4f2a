#pragma once

#include "FennickCore/Network/FirewallFinding.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What the readers of firewall rules share: a phone that connects, and what a list of rules does to it. All
// are pure; any thread.
namespace fennick {

// A phone's TCP connection over IPv4 to the receiving service, from anywhere in the local network.
struct Arrival {
  std::uint16_t port = 0;
  std::string interface{}; // that it comes by; empty when that is not known
};

// Whether a condition holds for the arrival, in the order of `min` ("and") and `max` ("or").
enum class Applies { no, perhaps, yes };
[[nodiscard]] constexpr Applies opposite(Applies applies) {
  if (applies == Applies::perhaps)
    return applies;
  return applies == Applies::yes ? Applies::no : Applies::yes;
}

// `ports` is "8000" or a range with `dash` between its ends. `perhaps` for what is not written in numbers.
[[nodiscard]] Applies portApplies(std::string_view ports, char dash, const Arrival &arrival);
// `interface` may end in the sign of a pattern, "*" or "+". Phones never come by "lo".
[[nodiscard]] Applies interfaceApplies(std::string_view interface, const Arrival &arrival);

// Goes along rules of which the first that applies decides. One that perhaps applies casts a doubt, which
// counts when the decision is another than its own.
class FirewallWalk {
public:
  using Port = FirewallFinding::Port;

  void meet(Applies applies, Port decision);
  // Rules that are perhaps gone along.
  void meetPerhaps(const FirewallWalk &branch);
  [[nodiscard]] bool isDecided() const { return decision_.has_value(); }
  // What becomes of the arrival; `otherwise` when no rule decides.
  [[nodiscard]] Port outcome(Port otherwise) const;

private:
  void doubt(Port decision);

  std::optional<Port> decision_;
  bool mayOpen_ = false;
  bool mayClose_ = false;
};

} // namespace fennick
