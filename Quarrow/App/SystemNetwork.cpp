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
  probeTicket_ = std::make_shared<const int>();
  const auto answer = [this, ticket = std::weak_ptr(probeTicket_),
                       done = std::move(done)](const auto &outcome) {
    mainQueue_.post([ticket, done, outcome] {
      if (ticket.lock())
        done(outcome);
    });
  };
  probe_ = fennick::LocalNetworkProbe::probe(host, port, timeout, answer);
}

void SystemNetwork::findFirewall(const std::string &interface, std::uint16_t port,
                                 std::function<void(fennick::FirewallFinding)> done) {
  firewallTicket_ = std::make_shared<const int>();
  if (!firewallQueue_)
    firewallQueue_ = std::make_unique<fennick::SerialQueue>("fennick.firewall");
  firewallQueue_->post(
      [this, interface, port, ticket = std::weak_ptr(firewallTicket_), done = std::move(done)] {
        if (ticket.expired())
          return;
        mainQueue_.post([ticket, done, finding = firewall_.find(port, interface)] {
          if (ticket.lock())
            done(finding);
        });
      });
}

void SystemNetwork::cancel() {
  probeTicket_.reset();
  probe_.reset();
  firewallTicket_.reset();
}

} // namespace quarrow
