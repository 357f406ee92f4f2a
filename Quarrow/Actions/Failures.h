#pragma once

#include "FennickCore/Storage/PhotoFileOps.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <string>
#include <system_error>

namespace quarrow {

// What went wrong with single files of one action, to be said all at once. A value.
class Failures {
  Q_DECLARE_TR_FUNCTIONS(quarrow::Failures)

public:
  void add(const std::filesystem::path &file, const std::string &reason);
  // In the words of the system, but for what people meet: no trash, no space, no permission.
  void add(const std::filesystem::path &file, const std::error_code &reason);

  [[nodiscard]] bool isEmpty() const { return lines_.isEmpty(); }
  [[nodiscard]] int count() const { return static_cast<int>(lines_.size()); }
  // A line for each file: its name and why.
  [[nodiscard]] const QStringList &lines() const { return lines_; }

private:
  QStringList lines_;
};

// Why photos could not be renamed or turned, in words for people.
[[nodiscard]] QString problemText(const fennick::PhotoFileOps::OpError &error);
// An error of the system in words for people.
[[nodiscard]] QString reasonText(const std::error_code &reason);
// A path's last component, as text that can be shown.
[[nodiscard]] QString nameText(const std::filesystem::path &file);

} // namespace quarrow
