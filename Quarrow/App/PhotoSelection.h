#pragma once

#include <QObject>

#include <filesystem>
#include <set>
#include <span>

namespace quarrow {

// The selected photos of the photo wall. Main thread.
class PhotoSelection : public QObject {
  Q_OBJECT

public:
  using Paths = std::set<std::filesystem::path>;

  [[nodiscard]] const Paths &files() const { return files_; }
  void set(Paths files);
  // Removes files that are gone; files that are not selected are skipped.
  void remove(std::span<const std::filesystem::path> files);

signals:
  void changed();

private:
  Paths files_;
};

} // namespace quarrow
