#include "Quarrow/App/PhotoSelection.h"

#include <utility>

namespace quarrow {

void PhotoSelection::set(Paths files) {
  if (files == files_)
    return;
  files_ = std::move(files);
  emit changed();
}

void PhotoSelection::remove(std::span<const std::filesystem::path> files) {
  Paths left = files_;
  for (const auto &file : files)
    left.erase(file);
  set(std::move(left));
}

} // namespace quarrow
