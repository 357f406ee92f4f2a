#pragma once

#include "Quarrow/App/LocalNetwork.h"

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

namespace quarrow::test {

// A network that the test controls.
class HandNetwork final : public LocalNetwork {
public:
  void watch(std::function<void(std::vector<fennick::LANAddress>)> changed) override {
    change = std::move(changed);
  }
  void unwatch() override { change = {}; }
  void probe(const std::string &host, std::uint16_t port, fennick::Seconds,
             std::function<void(fennick::LocalNetworkProbe::Outcome)> done) override {
    probes.push_back(fmt::format("{}:{}", host, port));
    answer = std::move(done);
  }
  void findFirewall(const std::string &interface, std::uint16_t,
                    std::function<void(fennick::FirewallFinding)> done) override {
    asked = interface;
    done(firewall);
  }
  void cancel() override { answer = {}; }

  std::function<void(std::vector<fennick::LANAddress>)> change;    // none: nobody watches
  std::function<void(fennick::LocalNetworkProbe::Outcome)> answer; // empty: no probe is running
  std::vector<std::string> probes;
  std::string asked; // the interface of the latest search
  fennick::FirewallFinding firewall{.port = fennick::FirewallFinding::Port::open};
};

} // namespace quarrow::test
