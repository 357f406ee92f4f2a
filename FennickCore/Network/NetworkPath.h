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

// The interfaces over which phones most likely reach this computer, best first. Other interfaces may have
// usable addresses too.
struct NetworkPath {
  std::vector<PathInterface> interfaces;
  bool operator==(const NetworkPath &) const = default;
};

// Orders interfaces: first hardware (and bridges, bonds and VLANs on hardware) with a default route, the
// smallest metric first; then other hardware; then other bridges, bonds and VLANs on hardware; then virtual
// Ethernet of no known program, which is all that a container has. A default route does not lift virtual
// interfaces above hardware. Tunnels, mobile broadband and the interfaces of containers, virtual machines and
// VPNs are left out. Within a group the order of `interfaces` is kept. Any thread.
[[nodiscard]] NetworkPath networkPath(std::span<const InterfaceFacts> interfaces);

// Returns the path of this computer as it is now.
[[nodiscard]] NetworkPath currentNetworkPath();

} // namespace fennick
