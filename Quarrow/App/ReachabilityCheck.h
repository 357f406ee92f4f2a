#pragma once

#include "Quarrow/App/LocalNetwork.h"
#include "Quarrow/App/ServerModel.h"

#include <QCoreApplication>

namespace quarrow {

// Checks whether phones can reach the service at the shown address, and which firewall may block them. The
// results go to the model. Main thread.
class ReachabilityCheck {
  Q_DECLARE_TR_FUNCTIONS(ReachabilityCheck)

public:
  // Both outlive the object.
  ReachabilityCheck(ServerModel &server, LocalNetwork &network) : server_(server), network_(network) {}

  // Cancels a running check and starts another, if the service listens.
  void run();
  // Cancels a running check and forgets the latest results.
  void reset();

private:
  [[nodiscard]] static LocalNetworkStatus failed(const QString &message);
  [[nodiscard]] static LocalNetworkStatus statusOf(const fennick::LocalNetworkProbe::Outcome &outcome);

  ServerModel &server_;
  LocalNetwork &network_;
};

} // namespace quarrow
