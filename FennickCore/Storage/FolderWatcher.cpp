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

} // namespace

FolderWatcher::FolderWatcher(const fs::path &folder, std::function<void()> onChange)
    : folder_(fs::absolute(folder).lexically_normal()), onChange_(std::move(onChange)) {
  queue_.post([this] { run(); });
}

FolderWatcher::~FolderWatcher() { watch_.interrupt(); }

void FolderWatcher::run() {
  watchEverything();
  onChange_();
  while (watch_.awaitChanges() == DirectoryWatch::Woken::changes) {
    const Meaning meaning = readChanges();
    if (meaning == Meaning::folders)
      watchEverything(); // before telling: who looks now sees all that came before the new watches
    if (meaning != Meaning::nothing)
      onChange_();
    if (watch_.pause(kLatency) == DirectoryWatch::Woken::interrupted)
      return;
  }
}

FolderWatcher::Meaning FolderWatcher::readChanges() {
  Meaning all = Meaning::nothing;
  for (const auto &change : watch_.drain())
    all = std::max(all, meaningOf(change));
  return all;
}

FolderWatcher::Meaning FolderWatcher::meaningOf(const DirectoryChange &change) const {
  if (change.kind == DirectoryChange::Kind::overflow)
    return Meaning::folders;
  const auto found = watched_.find(change.watch);
  if (found == watched_.end())
    return Meaning::nothing; // a folder that was given up meanwhile
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

// Watches what there is now and nothing else; what is watched already keeps its number.
void FolderWatcher::watchEverything() {
  const auto before = std::exchange(watched_, {});
  watchWayTo(folder_);
  watchFolder(folder_, 0);
  for (const auto &[watch, watched] : before)
    if (!watched_.contains(watch))
      watch_.remove(watch);
}

// Every folder above, so that the watcher notices when the path begins to lead elsewhere.
void FolderWatcher::watchWayTo(const fs::path &folder) {
  for (fs::path below = folder; below.has_relative_path(); below = below.parent_path())
    if (const auto watch = watch_.add(below.parent_path()))
      watched_[*watch] = {.level = kOnTheWay, .next = below.filename().string()};
}

void FolderWatcher::watchFolder(const fs::path &folder, int level) {
  const auto watch = watch_.add(folder, DirectoryWatch::Scope::content);
  if (!watch)
    return;
  watched_[*watch] = {.level = level, .next = {}};
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

} // namespace fennick
