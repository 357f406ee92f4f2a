#pragma once

#include "Quarrow/App/AppController.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/UploadProgress.h"
#include "Quarrow/Terminal/Report.h"

#include <QObject>

#include <cstdint>
#include <optional>

namespace quarrow {

// Shows the state of the service through a Report: where phones go as soon as port and addresses are known
// and whenever that has changed, what was received, how far uploads are, and what is wrong. Main thread. All
// that is borrowed outlives it.
class TerminalView : public QObject {
public:
  // `preferredPort` is what the settings ask for.
  TerminalView(const ServerModel &server, UploadProgress &progress, std::uint16_t preferredPort,
               Report &report);

  void received(const ReceivedFile &file);
  // Where phones go, for somebody who asks.
  void showAgain();
  // Whether the server has ever listened.
  [[nodiscard]] bool hasListened() const { return hasListened_; }

private:
  void update();
  void reportError();
  void reportCheck();
  void reportFirewall();
  [[nodiscard]] std::optional<Report::Listening> present() const;

  const ServerModel &server_;
  const std::uint16_t preferredPort_;
  Report &report_;
  bool hasListened_ = false;
  std::optional<Report::Listening> shown_;
  std::optional<Report::Check> check_; // that was reported last
};

} // namespace quarrow
