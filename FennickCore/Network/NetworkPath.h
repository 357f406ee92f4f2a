#pragma once

#include "FennickCore/Platform/NetworkInterfaces.h"

#include <span>
#include <string>
#include <vector>

namespace fennick {

enum class InterfaceType { wifi, wiredEthernet, other };

struct PathInterface {
  std::string name;
  InterfaceType type = InterfaceType::other;
  bool operator==(const PathInterface &) const = default;
};

// The interfaces over which phones most likely reach this computer, the likeliest first. Interfaces that are
// not in it may have usable addresses too.
struct NetworkPath {
  std::vector<PathInterface> interfaces;
  bool operator==(const NetworkPath &) const = default;
};

// First what carries a default route, the smallest metric first; then other hardware; then bridges, bonds and
// VLANs on hardware. Left out is what leads elsewhere: tunnels, mobile broadband, and the bridges and ports
// of containers and virtual machines. Within a group the order of `interfaces` is kept. Any thread.
[[nodiscard]] NetworkPath networkPath(std::span<const InterfaceFacts> interfaces);

// The same for this computer as it is now.
[[nodiscard]] NetworkPath currentNetworkPath();

} // namespace fennick
