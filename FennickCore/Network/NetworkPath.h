#pragma once

#include "FennickCore/Platform/Network/NetworkInterfaces.h"

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

// First hardware, and bridges, bonds and VLANs on hardware, that carry a default route, the smallest metric
// first; then other hardware; then what else stands on hardware; then virtual Ethernet that no known program
// made, which in a container is all there is. A default route lifts nothing over hardware that is not
// hardware itself. Left out is what leads elsewhere: tunnels, mobile broadband, and the bridges and ports of
// containers, virtual machines and VPNs. Within a group the order of `interfaces` is kept. Any thread.
[[nodiscard]] NetworkPath networkPath(std::span<const InterfaceFacts> interfaces);

// The same for this computer as it is now.
[[nodiscard]] NetworkPath currentNetworkPath();

} // namespace fennick
