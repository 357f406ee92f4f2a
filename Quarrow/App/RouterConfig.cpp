#include "Quarrow/App/RouterConfig.h"

#include "Quarrow/App/SaveFolderDrive.h"

#include <algorithm>
#include <utility>

namespace quarrow {

using fennick::Locked;

namespace {
constexpr std::size_t kMostFormerKeys = 8; // pages from before earlier changes were closed long ago
}

void RouterConfig::update(Values values) {
  const Locked locked(lock_);
  if (!values_.key.empty() && values_.key != values.key) {
    formerKeys_.push_back(values_.key);
    if (formerKeys_.size() > kMostFormerKeys)
      formerKeys_.pop_front();
  }
  values_ = std::move(values);
}

std::string RouterConfig::key() const {
  const Locked locked(lock_);
  return values_.key;
}

bool RouterConfig::wasKey(std::string_view key) const {
  const Locked locked(lock_);
  return std::ranges::find(formerKeys_, key) != formerKeys_.end();
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
