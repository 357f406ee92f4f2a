#include "Quarrow/App/RouterConfig.h"

#include "Quarrow/App/SaveFolderDrive.h"

#include <utility>

namespace quarrow {

using fennick::Locked;

void RouterConfig::update(Values values) {
  const Locked locked(lock_);
  values_ = std::move(values);
}

std::string RouterConfig::key() const {
  const Locked locked(lock_);
  return values_.key;
}

fennick::SaveDestination RouterConfig::destination() const {
  const Locked locked(lock_);
  return values_.destination;
}

std::int64_t RouterConfig::maxBytes() const {
  const Locked locked(lock_);
  return values_.maxBytes;
}

std::optional<std::filesystem::path> RouterConfig::gallery() const {
  const Locked locked(lock_);
  return values_.gallery;
}

fennick::UploadRouter::UploadPolicy RouterConfig::policy() const {
  const Locked locked(lock_);
  return values_.policy;
}

bool RouterConfig::canSave() const {
  std::filesystem::path folder;
  std::filesystem::path drive;
  {
    const Locked locked(lock_);
    folder = values_.destination.folder;
    drive = values_.drive;
  }
  return !isUnplugged(folder, drive);
}

} // namespace quarrow
