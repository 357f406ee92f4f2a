#include "FennickCore/Network/LANAddressResolver.h"

#include "FennickCore/Support/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <ranges>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace fennick::LANAddressResolver {

namespace {

constexpr std::array<std::string_view, 12> kExcludedPrefixes{
    "utun", "awdl", "llw", "gif", "stf", "lo", "anpi", "ap", "ipsec", "pdp_ip", "vmenet", "vnic"};

bool isExcluded(std::string_view name) {
  return std::ranges::any_of(kExcludedPrefixes,
                             [&](std::string_view prefix) { return name.starts_with(prefix); });
}

std::vector<std::int64_t> numbersOf(std::string_view address) {
  std::vector<std::int64_t> numbers;
  for (const auto piece : std::views::split(address, '.'))
    if (const auto number = signedDecimal(std::string_view(piece.begin(), piece.end())))
      numbers.push_back(*number);
  return numbers;
}

bool isUsable(std::string_view address) {
  const auto numbers = numbersOf(address);
  if (numbers.size() != 4 || numbers[0] == 0 || numbers[0] == 127)
    return false;
  return numbers[0] != 198 ||
         (numbers[1] != 18 && numbers[1] != 19); // 198.18.0.0/15 is reserved for benchmarks
}

bool isLinkLocal(const InterfaceAddress &entry) { return entry.address.starts_with("169.254."); }

LANAddress::Kind kindOf(const std::string &name, const std::map<std::string, LANAddress::Kind> &kinds) {
  if (const auto found = kinds.find(name); found != kinds.end())
    return found->second;
  return name.starts_with("bridge") ? LANAddress::Kind::hotspot : LANAddress::Kind::other;
}

std::optional<LANAddress::Kind> kindOf(InterfaceType type) {
  switch (type) {
  case InterfaceType::wifi:
    return LANAddress::Kind::wifi;
  case InterfaceType::wiredEthernet:
    return LANAddress::Kind::wired;
  case InterfaceType::other:
    return std::nullopt;
  }
  return std::nullopt;
}

} // namespace

std::vector<InterfaceAddress> systemIPv4Interfaces() { return systemIPv4Addresses(); }

std::vector<LANAddress> rank(std::span<const InterfaceAddress> interfaces,
                             std::span<const std::string> preferredOrder,
                             const std::map<std::string, LANAddress::Kind> &kinds) {
  std::multimap<std::tuple<bool, std::ptrdiff_t, std::string_view>, LANAddress>
      placed; // equal keys keep their order
  std::set<std::pair<std::string_view, std::string_view>> seen;
  for (const InterfaceAddress &entry : interfaces) {
    if (isExcluded(entry.name) || !isUsable(entry.address) || !seen.emplace(entry.name, entry.address).second)
      continue;
    // A name that is not in the list gets the position after its end.
    const auto position = std::ranges::find(preferredOrder, entry.name) - preferredOrder.begin();
    placed.emplace(std::tuple(isLinkLocal(entry), position, std::string_view(entry.name)),
                   LANAddress{entry.name, entry.address, kindOf(entry.name, kinds)});
  }
  const auto ordered = std::views::values(placed);
  return {ordered.begin(), ordered.end()};
}

std::vector<LANAddress> resolve(const NetworkPath &path) {
  std::vector<std::string> order;
  std::map<std::string, LANAddress::Kind> kinds;
  for (const PathInterface &interface : path.interfaces) {
    order.push_back(interface.name);
    if (const auto kind = kindOf(interface.type))
      kinds.emplace(interface.name, *kind);
  }
  return rank(systemIPv4Interfaces(), order, kinds);
}

std::vector<LANAddress> snapshot() { return resolve(currentNetworkPath()); }

} // namespace fennick::LANAddressResolver
