#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Network interfaces as the kernel reports them. Any thread.
namespace fennick {

struct InterfaceAddress {
  std::string name;    // "wlan0"
  std::string address; // IPv4 in dotted decimal
  bool operator==(const InterfaceAddress &) const = default;
};

// Returns the IPv4 addresses of the interfaces that are up and running, in the system's order; empty if the
// system does not answer.
[[nodiscard]] std::vector<InterfaceAddress> systemIPv4Addresses();

// One interface as its folder in /sys/class/net and the routing table describe it.
struct InterfaceFacts {
  std::string name;
  int linkType = 0;         // the kernel's ARPHRD number; 1 is Ethernet, Wi-Fi included
  std::string deviceType{}; // as the driver reports it: "wlan", "wwan", "bridge", "bond", "vlan"; often empty
  bool hasDevice = false;   // hardware stands behind it, a virtual machine's included
  bool isWireless = false;  // Wi-Fi
  bool isTunnel = false;    // made by a program (TUN or TAP)
  bool isBridge = false;
  bool isBond = false;
  std::vector<std::string> lower{}; // the interfaces it is made of: a bridge's ports, a bond's members
  std::optional<std::uint32_t> defaultRouteMetric{}; // of its best default route; absent without one
  bool operator==(const InterfaceFacts &) const = default;
};

// Returns all interfaces: those with the best default route first (in the routing table's order if metrics
// are equal), then the others by name.
[[nodiscard]] std::vector<InterfaceFacts> systemInterfaceFacts();

struct DefaultRoute {
  std::string interface;
  std::uint32_t metric = 0; // the route with the smallest metric is used
  bool operator==(const DefaultRoute &) const = default;
};

// Returns the usable IPv4 default routes in the text of /proc/net/route, best first. Lines that are not
// routes are skipped.
[[nodiscard]] std::vector<DefaultRoute> defaultRoutes(std::string_view table);

} // namespace fennick
