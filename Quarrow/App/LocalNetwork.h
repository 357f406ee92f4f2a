#pragma once

#include "FennickCore/Network/FirewallFinding.h"
#include "FennickCore/Network/LANAddress.h"
#include "FennickCore/Network/LocalNetworkProbe.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace quarrow {

// The network around the service, as the coordinator sees it; tests move one by hand. Main thread, its
// callbacks included.
class LocalNetwork {
public:
  virtual ~LocalNetwork() = default;

  // Calls `changed` soon with the present addresses, and again whenever they have changed, until `unwatch`.
  virtual void watch(std::function<void(std::vector<fennick::LANAddress>)> changed) = 0;
  virtual void unwatch() = 0;

  // Asks for the service's health at an address; a probe under way is given up, unheard.
  virtual void probe(const std::string &host, std::uint16_t port, fennick::Seconds timeout,
                     std::function<void(fennick::LocalNetworkProbe::Outcome)> done) = 0;
  // Looks for a firewall in the way of phones that come to `port` by `interface`; a search under way is given
  // up, unheard.
  virtual void findFirewall(const std::string &interface, std::uint16_t port,
                            std::function<void(fennick::FirewallFinding)> done) = 0;
  // Gives up both.
  virtual void cancel() = 0;
};

} // namespace quarrow
