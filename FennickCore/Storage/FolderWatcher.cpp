#include "FennickCore/Storage/FolderWatcher.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <algorithm>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr Seconds kLatency{0.2};
constexpr int kOnTheWay = -1;

std::optional<FileIdentity> identityOf(const fs::path &folder) {
  const auto identity = fileIdentity(folder);
  return identity ? std::optional(*identity) : std::nullopt;
}

} // namespace

FolderWatcher::FolderWatcher(const fs::path &folder, std::function<void()> onChange)
    : folder_(fs::absolute(folder).lexically_normal()), onChange_(std::move(onChange)) {
  queue_.post([this] { run(); });
}

FolderWatcher::~FolderWatcher() { watch_.interrupt(); }

void FolderWatcher::run() {
  using Woken = DirectoryWatch::Woken;
  watch_.watchMounts();
  watchEverything();
  onChange_();
  for (auto woken = watch_.awaitChanges(); woken != Woken::interrupted; woken = watch_.awaitChanges()) {
    const Meaning meaning = woken == Woken::mounts ? readMounts() : readChanges();
    if (meaning == Meaning::folders)
      watchEverything(); // before the call: an observer that looks now sees all that came before the new
                         // watches
    if (meaning != Meaning::nothing)
      onChange_();
    if (watch_.pause(kLatency) == Woken::interrupted)
      return;
  }
}

FolderWatcher::Meaning FolderWatcher::readChanges() {
  Meaning all = Meaning::nothing;
  for (const auto &change : watch_.drain())
    all = std::max(all, meaningOf(change));
  return all;
}

// Ignores mounts elsewhere, which containers, packages and disk images make often.
FolderWatcher::Meaning FolderWatcher::readMounts() const {
  const bool isElsewhere = std::ranges::all_of(
      places_, [](const Place &place) { return identityOf(place.path) == place.identity; });
  return isElsewhere ? Meaning::nothing : Meaning::folders;
}

FolderWatcher::Meaning FolderWatcher::meaningOf(const DirectoryChange &change) const {
  if (change.kind == DirectoryChange::Kind::overflow)
    return Meaning::folders;
  const auto found = watched_.find(change.watch);
  if (found == watched_.end())
    return Meaning::nothing; // the folder was dropped meanwhile
  const auto &[level, next] = found->second;
  if (change.kind == DirectoryChange::Kind::lost)
    return Meaning::folders;
  if (level == kOnTheWay)
    return change.name == next ? Meaning::folders : Meaning::nothing;
  if (change.isDirectory)
    return level < kDeepestPhotoLevel && isPhotoFolderName(change.name) ? Meaning::folders : Meaning::nothing;
  const bool counts = change.name == kOrderFile || countsAsMedia(change.name, FileKind::regular);
  return counts ? Meaning::photos : Meaning::nothing;
}

// Watches exactly the folders that exist now; a folder that is watched already keeps its number.
void FolderWatcher::watchEverything() {
  const auto before = std::exchange(watched_, {});
  places_.clear();
  watchWayTo(folder_);
  watchFolder(folder_, 0);
  for (const auto &[watch, watched] : before)
    if (!watched_.contains(watch))
      watch_.remove(watch);
}

// Watches every folder above, to notice when the path begins to lead elsewhere.
void FolderWatcher::watchWayTo(const fs::path &folder) {
  for (fs::path below = folder; below.has_relative_path(); below = below.parent_path())
    if (const auto number = watch(below.parent_path(), DirectoryWatch::Scope::names))
      watched_[*number] = {.level = kOnTheWay, .next = below.filename().string()};
}

void FolderWatcher::watchFolder(const fs::path &folder, int level) {
  const auto number = watch(folder, DirectoryWatch::Scope::content);
  if (!number)
    return;
  watched_[*number] = {.level = level, .next = {}};
  if (level == kDeepestPhotoLevel)
    return;
  const auto isInside = [](std::string_view name, FileKind kind) {
    return kind == FileKind::directory && isPhotoFolderName(name);
  };
  const auto inside = readFolder(folder, level == 0 ? Links::follow : Links::refuse, isInside);
  if (inside)
    for (const auto &entry : *inside)
      watchFolder(folder / entry.name, level + 1);
}

// Notes the place first, so that a mount between the two steps is noticed as a change of it.
std::optional<int> FolderWatcher::watch(const fs::path &folder, DirectoryWatch::Scope scope) {
  places_.push_back({.path = folder, .identity = identityOf(folder)});
  const auto number = watch_.add(folder, scope);
  return number ? std::optional(*number) : std::nullopt;
}

} // namespace fennick
