#include "FennickCore/Network/NetworkPath.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <ranges>
#include <string_view>
#include <utility>

namespace fennick {

namespace {

constexpr int kEthernet = 1; // ARPHRD_ETHER

// Cables and networks inside this computer, recognised by the names that container and virtual-machine
// programs give them. Their bridges need no names: no hardware is at the bottom of them.
constexpr std::array<std::string_view, 10> kVirtualPrefixes{"veth", "vnet", "tap",     "tun",   "lxc",
                                                            "cali", "cni",  "flannel", "vmnet", "vbox"};

bool hasVirtualName(const InterfaceFacts &facts) {
  return std::ranges::any_of(kVirtualPrefixes,
                             [&](std::string_view prefix) { return facts.name.starts_with(prefix); });
}

bool isMobileBroadband(const InterfaceFacts &facts) { return facts.deviceType == "wwan"; }

bool isHardware(const InterfaceFacts &facts) {
  return facts.hasDevice && facts.linkType == kEthernet && !facts.isTunnel && !isMobileBroadband(facts);
}

bool isStacked(const InterfaceFacts &facts) {
  return facts.isBridge || facts.isBond || facts.deviceType == "vlan";
}

// Whether a cable or an antenna is at the bottom of a bridge, bond or VLAN. They stack a few levels at most;
// the kernel allows 8.
bool standsOnHardware(const InterfaceFacts &facts, std::span<const InterfaceFacts> all, int levels = 8) {
  return std::ranges::any_of(facts.lower, [&](const std::string &name) {
    const auto lower = std::ranges::find(all, name, &InterfaceFacts::name);
    return lower != all.end() &&
           (isHardware(*lower) || (levels > 0 && standsOnHardware(*lower, all, levels - 1)));
  });
}

enum class Group { defaultRoute, hardware, stacked };

std::optional<Group> groupOf(const InterfaceFacts &facts, std::span<const InterfaceFacts> all) {
  const bool onHardware = isStacked(facts) && standsOnHardware(facts, all);
  const bool isEthernet = facts.linkType == kEthernet && !facts.isTunnel && !isMobileBroadband(facts);
  const bool isVirtual = facts.isBridge ? !onHardware : !facts.hasDevice && hasVirtualName(facts);
  if (!isEthernet || isVirtual)
    return std::nullopt;
  if (facts.defaultRouteMetric)
    return Group::defaultRoute;
  if (facts.hasDevice)
    return Group::hardware;
  return onHardware ? std::optional(Group::stacked) : std::nullopt;
}

InterfaceType typeOf(const InterfaceFacts &facts) {
  if (facts.isWireless)
    return InterfaceType::wifi;
  const bool joinsCables = (facts.isBridge || facts.isBond) && facts.defaultRouteMetric.has_value();
  return isHardware(facts) || joinsCables ? InterfaceType::wiredEthernet : InterfaceType::other;
}

} // namespace

NetworkPath networkPath(std::span<const InterfaceFacts> interfaces) {
  std::multimap<std::pair<Group, std::uint32_t>, PathInterface> placed; // equal keys stay in order
  for (const InterfaceFacts &facts : interfaces)
    if (const auto group = groupOf(facts, interfaces))
      placed.emplace(std::pair(*group, facts.defaultRouteMetric.value_or(0)),
                     PathInterface{facts.name, typeOf(facts)});
  const auto ordered = std::views::values(placed);
  return {.interfaces = {ordered.begin(), ordered.end()}};
}

NetworkPath currentNetworkPath() { return networkPath(systemInterfaceFacts()); }

} // namespace fennick
