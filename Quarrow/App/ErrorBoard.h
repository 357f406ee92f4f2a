#pragma once

#include "Quarrow/App/ServerModel.h"

#include <QString>

#include <cstdint>
#include <utility>
#include <vector>

namespace quarrow {

// What an error is about. A later success of the same source removes its error.
enum class ErrorSource : std::uint8_t {
  server,
  chosenFolder,
  makingFolder,
  missingFolder,
  settings,
  hotKey,
  imports,
  request // something that the user asked for once
};

// The current errors, at most one for each source. The latest one is shown as the model's error. Main thread.
class ErrorBoard {
public:
  explicit ErrorBoard(ServerModel &server) : server_(server) {} // outlives the object

  // Replaces the error of `source`, if it has one, and shows the new one.
  void report(ErrorSource source, const QString &error);
  // Removes the error of `source`.
  void resolve(ErrorSource source);
  // Removes the error that is shown, since the user has read it.
  void dismiss();
  [[nodiscard]] bool has(ErrorSource source) const;

private:
  void remove(ErrorSource source);
  void showLatest();

  ServerModel &server_;
  std::vector<std::pair<ErrorSource, std::string>> errors_; // the latest one last
};

} // namespace quarrow
