#pragma once

#include "FennickCore/Network/LANAddress.h"
#include "FennickCore/Network/NetworkPath.h"
#include "FennickCore/Platform/Network/NetworkInterfaces.h"

#include <map>
#include <span>
#include <string>
#include <vector>

// Finds this computer's addresses and puts the one that phones most likely reach first. Any thread.
namespace fennick::LANAddressResolver {

// Those of interfaces that are up and running, in the system's order; loopback and everything else included.
[[nodiscard]] std::vector<InterfaceAddress> systemIPv4Interfaces();

// `interfaces` without loopback, tunnels and other interfaces that no phone is on, without addresses that are
// never reachable (0.x, 127.x, 198.18.0.0/15) and without repetitions. Link-local addresses (169.254.x) come
// last, after those of bridges of containers too; before that, interfaces in `preferredOrder` come in that
// order, then the others by name; addresses of one interface stay in order. An interface that is not in
// `kinds` is a hotspot when its name begins with "bridge", else `other`.
[[nodiscard]] std::vector<LANAddress> rank(std::span<const InterfaceAddress> interfaces,
                                           std::span<const std::string> preferredOrder,
                                           const std::map<std::string, LANAddress::Kind> &kinds);

// This computer's addresses now, ranked by `path`.
[[nodiscard]] std::vector<LANAddress> resolve(const NetworkPath &path);

// The same with the path as it is now.
[[nodiscard]] std::vector<LANAddress> snapshot();

} // namespace fennick::LANAddressResolver
