#include "FennickCore/Platform/Network/NetworkInterfaces.h"

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Support/Text.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <net/route.h>
#include <netdb.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <map>
#include <memory>
#include <ranges>
#include <set>
#include <span>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr const char *kInterfaces = "/sys/class/net";
constexpr const char *kRoutes = "/proc/net/route";

bool isUsable(const ifaddrs &entry) {
  constexpr unsigned kNeeded = IFF_UP | IFF_RUNNING;
  return entry.ifa_addr != nullptr && entry.ifa_addr->sa_family == AF_INET &&
         (entry.ifa_flags & kNeeded) == kNeeded;
}

std::optional<std::string> numericText(const sockaddr &address) {
  std::array<char, NI_MAXHOST> host{}; // 1025 bytes
  if (::getnameinfo(&address, sizeof(sockaddr_in), host.data(), host.size(), nullptr, 0, NI_NUMERICHOST) != 0)
    return std::nullopt;
  return host.data();
}

// The system gives an address's label, which begins with the interface: "eth0:1".
std::string interfaceName(std::string_view label) { return std::string(label.substr(0, label.find(':'))); }

// Splits `text` at any of `separators`, leaving out empty pieces.
std::vector<std::string_view> pieces(std::string_view text, std::string_view separators) {
  std::vector<std::string_view> found;
  for (std::size_t at = text.find_first_not_of(separators); at != std::string_view::npos;
       at = text.find_first_not_of(separators, at)) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    found.push_back(text.substr(at, end - at));
    at = end;
  }
  return found;
}

std::optional<std::uint32_t> number(std::string_view text, int base) {
  std::uint32_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (error != std::errc() || end != text.data() + text.size())
    return std::nullopt;
  return value;
}

// The columns are interface, destination, gateway, flags, reference count, use, metric, mask.
std::optional<DefaultRoute> defaultRoute(std::string_view line) {
  const auto columns = pieces(line, " \t");
  if (columns.size() < 8)
    return std::nullopt;
  const auto flags = number(columns[3], 16);
  const auto metric = number(columns[6], 10);
  const bool isDefault = number(columns[1], 16) == 0U && number(columns[7], 16) == 0U;
  if (!isDefault || !flags || !metric || (*flags & RTF_UP) == 0 || (*flags & RTF_REJECT) != 0)
    return std::nullopt;
  return DefaultRoute{std::string(columns[0]), *metric};
}

std::string textOf(const fs::path &file) { return readFile(file).value_or(std::string()); }

bool isThere(const fs::path &path) { return fileIdentity(path).has_value(); }

// Returns the value of a "KEY=value" line.
std::string valueOf(std::string_view lines, std::string_view key) {
  for (const std::string_view line : pieces(lines, "\n"))
    if (line.starts_with(key) && line.substr(key.size()).starts_with('='))
      return std::string(line.substr(key.size() + 1));
  return {};
}

std::vector<std::string> entriesOf(const fs::path &folder) {
  std::vector<std::string> names;
  for (const DirectoryEntry &entry : SystemFileSystem().list(folder).value_or(std::vector<DirectoryEntry>()))
    names.push_back(entry.name);
  std::ranges::sort(names);
  return names;
}

std::vector<std::string> lowerInterfaces(const fs::path &folder) {
  constexpr std::string_view kPrefix = "lower_";
  std::vector<std::string> names;
  for (const std::string &entry : entriesOf(folder))
    if (entry.starts_with(kPrefix))
      names.push_back(entry.substr(kPrefix.size()));
  return names;
}

// "1\n" for Ethernet.
int linkType(std::string_view line) {
  const auto type = number(line.substr(0, line.find('\n')), 10);
  return static_cast<int>(type.value_or(0));
}

InterfaceFacts factsOf(const std::string &name) {
  const fs::path folder = fs::path(kInterfaces) / name;
  InterfaceFacts facts;
  facts.name = name;
  facts.linkType = linkType(textOf(folder / "type"));
  facts.deviceType = valueOf(textOf(folder / "uevent"), "DEVTYPE");
  facts.hasDevice = isThere(folder / "device");
  facts.isWireless = isThere(folder / "wireless") || isThere(folder / "phy80211");
  facts.isTunnel = isThere(folder / "tun_flags");
  facts.isBridge = isThere(folder / "bridge");
  facts.isBond = isThere(folder / "bonding");
  facts.lower = lowerInterfaces(folder);
  return facts;
}

} // namespace

std::vector<InterfaceAddress> systemIPv4Addresses() {
  ifaddrs *first = nullptr;
  if (::getifaddrs(&first) != 0)
    return {};
  const std::unique_ptr<ifaddrs, decltype(&::freeifaddrs)> owned(first, &::freeifaddrs);
  std::vector<InterfaceAddress> addresses;
  for (const ifaddrs *entry = first; entry != nullptr; entry = entry->ifa_next)
    if (isUsable(*entry))
      if (auto text = numericText(*entry->ifa_addr))
        addresses.push_back({.name = interfaceName(entry->ifa_name), .address = std::move(*text)});
  return addresses;
}

std::vector<DefaultRoute> defaultRoutes(std::string_view table) {
  std::multimap<std::uint32_t, DefaultRoute> byMetric; // equal metrics stay in the table's order
  for (const std::string_view line : pieces(table, "\n"))
    if (auto route = defaultRoute(line))
      byMetric.emplace(route->metric, std::move(*route));
  const auto routes = std::views::values(byMetric);
  return {routes.begin(), routes.end()};
}

std::vector<InterfaceFacts> systemInterfaceFacts() {
  std::vector<InterfaceFacts> interfaces;
  std::set<std::string> listed;
  for (const DefaultRoute &route : defaultRoutes(textOf(kRoutes)))
    if (listed.insert(route.interface).second) {
      interfaces.push_back(factsOf(route.interface));
      interfaces.back().defaultRouteMetric = route.metric;
    }
  for (const std::string &name : entriesOf(kInterfaces))
    if (listed.insert(name).second)
      interfaces.push_back(factsOf(name));
  return interfaces;
}

} // namespace fennick
