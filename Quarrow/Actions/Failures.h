#pragma once

#include "FennickCore/Storage/PhotoFileOps.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <string>
#include <system_error>

namespace quarrow {

// Failures of single files in one action, reported together. A value.
class Failures {
  Q_DECLARE_TR_FUNCTIONS(quarrow::Failures)

public:
  void add(const std::filesystem::path &file, const std::string &reason);
  // Uses the system's message, except for frequent causes: no trash, no space, no permission.
  void add(const std::filesystem::path &file, const std::error_code &reason);

  [[nodiscard]] bool isEmpty() const { return lines_.isEmpty(); }
  [[nodiscard]] int count() const { return static_cast<int>(lines_.size()); }
  // A line for each file with its name and the reason.
  [[nodiscard]] const QStringList &lines() const { return lines_; }

private:
  QStringList lines_;
};

// Returns a message for the user why photos could not be renamed or rotated.
[[nodiscard]] QString problemText(const fennick::PhotoFileOps::OpError &error);
// Returns a message for the user for a system error.
[[nodiscard]] QString reasonText(const std::error_code &reason);
// Returns a path's last component as displayable text.
[[nodiscard]] QString nameText(const std::filesystem::path &file);

} // namespace quarrow
