#include "Quarrow/App/ReachabilityCheck.h"

#include <utility>

namespace quarrow {

namespace {
constexpr fennick::Seconds kProbeTimeout{3};
}

using Outcome = fennick::LocalNetworkProbe::Outcome;

void ReachabilityCheck::run() {
  network_.cancel();
  const auto address = server_.preferredAddress();
  const auto port = server_.port();
  if (!address)
    return server_.setLocalNetworkStatus(failed(tr("没有可用的局域网地址")));
  if (!port)
    return;
  network_.findFirewall(address->interface, *port,
                        [this](auto finding) { server_.setFirewall(std::move(finding)); });
  server_.setLocalNetworkStatus({});
  network_.probe(address->address, *port, kProbeTimeout,
                 [this](const Outcome &outcome) { server_.setLocalNetworkStatus(statusOf(outcome)); });
}

void ReachabilityCheck::reset() {
  network_.cancel();
  server_.setLocalNetworkStatus({});
  server_.setFirewall(std::nullopt);
}

LocalNetworkStatus ReachabilityCheck::failed(const QString &message) {
  return {.kind = LocalNetworkStatus::Kind::failed, .message = message};
}

LocalNetworkStatus ReachabilityCheck::statusOf(const Outcome &outcome) {
  switch (outcome.kind) {
  case Outcome::Kind::reachable:
    return {.kind = LocalNetworkStatus::Kind::ok};
  case Outcome::Kind::timeout:
    return failed(tr("连接超时"));
  case Outcome::Kind::unreachable:
    break;
  }
  return failed(QString::fromStdString(outcome.message));
}

} // namespace quarrow
