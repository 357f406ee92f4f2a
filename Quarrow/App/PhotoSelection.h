#pragma once

#include <QObject>

#include <filesystem>
#include <set>
#include <span>

namespace quarrow {

// Which photos of the photo wall are selected. Main thread.
class PhotoSelection : public QObject {
  Q_OBJECT

public:
  using Paths = std::set<std::filesystem::path>;

  [[nodiscard]] const Paths &files() const { return files_; }
  void set(Paths files);
  // Files that are gone; others than selected ones are passed over.
  void remove(std::span<const std::filesystem::path> files);

signals:
  void changed();

private:
  Paths files_;
};

} // namespace quarrow
