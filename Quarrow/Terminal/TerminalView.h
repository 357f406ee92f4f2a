#pragma once

#include "Quarrow/App/AppController.h"
#include "Quarrow/App/ServerModel.h"
#include "Quarrow/App/UploadProgress.h"
#include "Quarrow/Terminal/Report.h"

#include <QObject>

#include <cstdint>
#include <optional>

namespace quarrow {

// Shows the state of the service through a Report: the address as soon as port and addresses are known and
// after every change, received files, the progress of uploads, and errors. Main thread. Everything that is
// borrowed outlives it.
class TerminalView : public QObject {
public:
  // `preferredPort` is the port in the settings.
  TerminalView(const ServerModel &server, UploadProgress &progress, std::uint16_t preferredPort,
               Report &report);

  void received(const ReceivedFile &file);
  // Reports the address again because the user asked.
  void showAgain();
  // Returns whether the server has ever listened.
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
  std::optional<Report::Check> check_; // as reported last
};

} // namespace quarrow
