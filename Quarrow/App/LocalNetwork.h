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

// The network of this computer for the coordinator; tests implement one that they change. Main thread,
// including the callbacks.
class LocalNetwork {
public:
  virtual ~LocalNetwork() = default;

  // Calls `changed` soon with the current addresses and again after every change, until `unwatch`.
  virtual void watch(std::function<void(std::vector<fennick::LANAddress>)> changed) = 0;
  virtual void unwatch() = 0;

  // Requests the service's health at an address. Cancels a running probe, which then reports nothing.
  virtual void probe(const std::string &host, std::uint16_t port, fennick::Seconds timeout,
                     std::function<void(fennick::LocalNetworkProbe::Outcome)> done) = 0;
  // Looks for a firewall that may block phones at `port` on `interface`. Cancels a running search, which then
  // reports nothing.
  virtual void findFirewall(const std::string &interface, std::uint16_t port,
                            std::function<void(fennick::FirewallFinding)> done) = 0;
  // Cancels both.
  virtual void cancel() = 0;
};

} // namespace quarrow
