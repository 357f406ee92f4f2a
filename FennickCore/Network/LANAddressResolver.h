#pragma once

#include "FennickCore/Network/LANAddress.h"
#include "FennickCore/Network/NetworkPath.h"
#include "FennickCore/Platform/Network/NetworkInterfaces.h"

#include <map>
#include <span>
#include <string>
#include <vector>

// Finds this computer's addresses and orders them by how likely phones reach them. Any thread.
namespace fennick::LANAddressResolver {

// Returns the addresses of all interfaces that are up and running, loopback included, in the system's order.
[[nodiscard]] std::vector<InterfaceAddress> systemIPv4Interfaces();

// Returns `interfaces` without loopback, tunnels and other interfaces that phones cannot use, without
// unreachable addresses (0.x, 127.x, 198.18.0.0/15) and duplicates. Interfaces in `preferredOrder` come first
// in that order, then the others by name; link-local addresses (169.254.x) come last. Addresses of one
// interface keep their order. An interface that is not in `kinds` is a hotspot if its name begins with
// "bridge", otherwise `other`.
[[nodiscard]] std::vector<LANAddress> rank(std::span<const InterfaceAddress> interfaces,
                                           std::span<const std::string> preferredOrder,
                                           const std::map<std::string, LANAddress::Kind> &kinds);

// Returns this computer's current addresses, ranked by `path`.
[[nodiscard]] std::vector<LANAddress> resolve(const NetworkPath &path);

// Returns this computer's current addresses, ranked by the current path.
[[nodiscard]] std::vector<LANAddress> snapshot();

} // namespace fennick::LANAddressResolver
