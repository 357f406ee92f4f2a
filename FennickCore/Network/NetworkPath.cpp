#include "FennickCore/Network/NetworkPath.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <ranges>
#include <string_view>
#include <utility>

namespace fennick {

namespace {

constexpr int kEthernet = 1; // ARPHRD_ETHER
constexpr std::uint32_t kNoRoute = std::numeric_limits<std::uint32_t>::max();

// Interfaces inside this computer and VPN tunnels, recognised by the names that container, virtual-machine
// and VPN programs give them. Interfaces other than Ethernet and bridges without hardware are recognised
// without names.
constexpr std::array<std::string_view, 27> kVirtualPrefixes{
    "cali", "cilium", "cni",      "docker", "dummy",  "flannel",   "ifb",   "incusbr", "kube",
    "lxc",  "lxdbr",  "nordlynx", "ovs-",   "podman", "tailscale", "tap",   "tun",     "vbox",
    "ve-",  "veth",   "virbr",    "vmnet",  "vnet",   "vz-",       "weave", "wg",      "zt"};

// "br-" and twelve hexadecimal digits; "br-lan" is a bridge that a user made.
bool isContainerNetwork(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  return name.starts_with("br-") && name.size() == 15 &&
         name.find_first_not_of(kDigits, 3) == std::string_view::npos;
}

bool hasVirtualName(const InterfaceFacts &facts) {
  const auto begins = [&](std::string_view prefix) { return facts.name.starts_with(prefix); };
  return std::ranges::any_of(kVirtualPrefixes, begins) || isContainerNetwork(facts.name);
}

// Returns whether a phone could be on the other end of the interface.
bool isEthernet(const InterfaceFacts &facts) {
  const bool isMobileBroadband = facts.deviceType == "wwan";
  return facts.linkType == kEthernet && !facts.isTunnel && !isMobileBroadband;
}

bool isHardware(const InterfaceFacts &facts) {
  return (facts.hasDevice || facts.isWireless) && isEthernet(facts);
}

bool isStacked(const InterfaceFacts &facts) {
  return facts.isBridge || facts.isBond || facts.deviceType == "vlan";
}

// Returns whether a bridge, bond or VLAN leads to a cable or an antenna. The kernel allows at most 8 levels.
bool standsOnHardware(const InterfaceFacts &facts, std::span<const InterfaceFacts> all, int levels = 8) {
  return std::ranges::any_of(facts.lower, [&](const std::string &name) {
    const auto lower = std::ranges::find(all, name, &InterfaceFacts::name);
    return lower != all.end() &&
           (isHardware(*lower) || (levels > 0 && standsOnHardware(*lower, all, levels - 1)));
  });
}

enum class Group { defaultRoute, hardware, stacked, unknown };

std::optional<Group> groupOf(const InterfaceFacts &facts, std::span<const InterfaceFacts> all) {
  const bool hardware = isHardware(facts);
  if (!isEthernet(facts) || (!hardware && hasVirtualName(facts)))
    return std::nullopt;
  if (!hardware && !(isStacked(facts) && standsOnHardware(facts, all)))
    return facts.isBridge ? std::nullopt : std::optional(Group::unknown);
  if (facts.defaultRouteMetric)
    return Group::defaultRoute;
  return hardware ? Group::hardware : Group::stacked;
}

InterfaceType typeOf(const InterfaceFacts &facts) {
  if (facts.isWireless)
    return InterfaceType::wifi;
  const bool joinsCables = (facts.isBridge || facts.isBond) && facts.defaultRouteMetric.has_value();
  return isHardware(facts) || joinsCables ? InterfaceType::wiredEthernet : InterfaceType::other;
}

} // namespace

NetworkPath networkPath(std::span<const InterfaceFacts> interfaces) {
  std::multimap<std::pair<Group, std::uint32_t>, PathInterface> placed; // equal keys keep their order
  for (const InterfaceFacts &facts : interfaces)
    if (const auto group = groupOf(facts, interfaces))
      placed.emplace(std::pair(*group, facts.defaultRouteMetric.value_or(kNoRoute)),
                     PathInterface{facts.name, typeOf(facts)});
  const auto ordered = std::views::values(placed);
  return {.interfaces = {ordered.begin(), ordered.end()}};
}

NetworkPath currentNetworkPath() { return networkPath(systemInterfaceFacts()); }

} // namespace fennick
