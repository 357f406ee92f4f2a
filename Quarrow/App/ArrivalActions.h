#pragma once

#include "FennickCore/Settings/AppSettings.h"
#include "Quarrow/App/Desktop.h"

#include <QCoreApplication>

#include <cstdint>
#include <filesystem>

namespace quarrow {

// The actions that the user has chosen for received photos: copy, open, play a sound, show a notification.
// Main thread.
class ArrivalActions {
  Q_DECLARE_TR_FUNCTIONS(ArrivalActions)

public:
  explicit ArrivalActions(Desktop &desktop) : desktop_(desktop) {} // outlives the object

  // Runs the actions that are enabled in `workflow` for `file`, which had `bytes` bytes when it was received.
  void run(const fennick::WorkflowOptions &workflow, const std::filesystem::path &file, std::int64_t bytes);

private:
  Desktop &desktop_;
};

} // namespace quarrow
