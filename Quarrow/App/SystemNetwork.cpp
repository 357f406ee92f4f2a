#include "Quarrow/App/SystemNetwork.h"

#include <utility>

namespace quarrow {

SystemNetwork::~SystemNetwork() { cancel(); }

void SystemNetwork::watch(std::function<void(std::vector<fennick::LANAddress>)> changed) {
  watcher_.emplace(mainQueue_, std::move(changed));
  watcher_->start();
}

void SystemNetwork::probe(const std::string &host, std::uint16_t port, fennick::Seconds timeout,
                          std::function<void(fennick::LocalNetworkProbe::Outcome)> done) {
  probeWanted_.cancel();
  const auto answer = [this, token = probeWanted_.token(), done = std::move(done)](const auto &outcome) {
    mainQueue_.post(token.guard([done, outcome] { done(outcome); }));
  };
  probe_ = fennick::LocalNetworkProbe::probe(host, port, timeout, answer);
}

void SystemNetwork::findFirewall(const std::string &interface, std::uint16_t port,
                                 std::function<void(fennick::FirewallFinding)> done) {
  firewallWanted_.cancel();
  if (!firewallQueue_)
    firewallQueue_ = std::make_unique<fennick::SerialQueue>("fennick.firewall");
  firewallQueue_->post([this, interface, port, token = firewallWanted_.token(), done = std::move(done)] {
    if (token.isCancelled())
      return;
    mainQueue_.post(token.guard([done, finding = firewall_.find(port, interface)] { done(finding); }));
  });
}

void SystemNetwork::cancel() {
  probeWanted_.cancel();
  probe_.reset();
  firewallWanted_.cancel();
}

} // namespace quarrow
