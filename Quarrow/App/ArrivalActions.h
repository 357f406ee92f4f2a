#pragma once

#include "FennickCore/Settings/AppSettings.h"
#include "Quarrow/App/Desktop.h"

#include <QCoreApplication>

#include <cstdint>
#include <filesystem>

namespace quarrow {

// What the user wants to happen when a photo has arrived: copy it, open it, play a sound, show a
// notification. Main thread.
class ArrivalActions {
  Q_DECLARE_TR_FUNCTIONS(ArrivalActions)

public:
  explicit ArrivalActions(Desktop &desktop) : desktop_(desktop) {} // outlives the object

  // Runs the actions that are switched on in `workflow` for `file`, which was received with `bytes` bytes.
  void run(const fennick::WorkflowOptions &workflow, const std::filesystem::path &file, std::int64_t bytes);

private:
  Desktop &desktop_;
};

} // namespace quarrow
