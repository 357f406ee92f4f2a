#pragma once

#include "FennickCore/Network/FirewallFinder.h"
#include "FennickCore/Network/LocalNetworkProbe.h"
#include "FennickCore/Network/NetworkWatcher.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "Quarrow/App/LocalNetwork.h"

#include <memory>
#include <optional>

namespace quarrow {

// The network of this computer.
class SystemNetwork final : public LocalNetwork {
public:
  explicit SystemNetwork(fennick::MainQueue &mainQueue) : mainQueue_(mainQueue) {} // outlives this
  ~SystemNetwork() override;
  SystemNetwork(const SystemNetwork &) = delete;
  SystemNetwork &operator=(const SystemNetwork &) = delete;

  void watch(std::function<void(std::vector<fennick::LANAddress>)> changed) override;
  void unwatch() override { watcher_.reset(); }
  void probe(const std::string &host, std::uint16_t port, fennick::Seconds timeout,
             std::function<void(fennick::LocalNetworkProbe::Outcome)> done) override;
  void findFirewall(const std::string &interface, std::uint16_t port,
                    std::function<void(fennick::FirewallFinding)> done) override;
  void cancel() override;

private:
  fennick::MainQueue &mainQueue_;
  std::optional<fennick::NetworkWatcher> watcher_;
  fennick::Lifetime probeWanted_;
  std::unique_ptr<fennick::LocalNetworkProbe> probe_;
  fennick::Lifetime firewallWanted_;
  const fennick::FirewallFinder firewall_{fennick::FirewallFinder::Sources::system()};
  std::unique_ptr<fennick::SerialQueue> firewallQueue_; // made on first use
};

} // namespace quarrow
