#include "FennickCore/Network/FirewallRules.h"

#include "FennickCore/Support/Text.h"

namespace fennick {

Applies portApplies(std::string_view ports, char dash, const Arrival &arrival) {
  const std::size_t split = ports.find(dash);
  const auto first = signedDecimal(ports.substr(0, split));
  const auto last = split == std::string_view::npos ? first : signedDecimal(ports.substr(split + 1));
  if (!first || !last)
    return Applies::perhaps;
  return *first <= arrival.port && arrival.port <= *last ? Applies::yes : Applies::no;
}

Applies interfaceApplies(std::string_view interface, const Arrival &arrival) {
  if (interface == "lo")
    return Applies::no;
  if (arrival.interface.empty() || interface.empty())
    return Applies::perhaps;
  const bool isPattern = interface.ends_with('*') || interface.ends_with('+');
  const bool isIt = isPattern ? arrival.interface.starts_with(interface.substr(0, interface.size() - 1))
                              : arrival.interface == interface;
  return isIt ? Applies::yes : Applies::no;
}

void FirewallWalk::meet(Applies applies, Port decision) {
  if (isDecided() || applies == Applies::no)
    return;
  if (applies == Applies::yes)
    decision_ = decision;
  else
    doubt(decision);
}

void FirewallWalk::meetPerhaps(const FirewallWalk &branch) {
  if (isDecided())
    return;
  if (branch.decision_)
    doubt(*branch.decision_);
  mayOpen_ |= branch.mayOpen_;
  mayClose_ |= branch.mayClose_;
}

void FirewallWalk::doubt(Port decision) {
  mayOpen_ |= decision != Port::closed;
  mayClose_ |= decision != Port::open;
}

FirewallFinding::Port FirewallWalk::outcome(Port otherwise) const {
  const Port decided = decision_.value_or(otherwise);
  const bool isDoubted = decided == Port::open ? mayClose_ : mayOpen_;
  return isDoubted ? Port::unknown : decided;
}

} // namespace fennick
