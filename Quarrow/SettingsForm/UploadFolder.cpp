#include "Quarrow/SettingsForm/UploadFolder.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/NameGenerator.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/TakenNames.h"

#include <algorithm>
#include <cstddef>

namespace quarrow {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostGalleries = 300; // more than a user looks through in a list

fennick::TakenNames namesIn(const fs::path &folder, fennick::FileSystem &files) {
  fennick::TakenNames taken;
  if (const auto entries = files.list(folder))
    for (const auto &[name, kind] : *entries)
      taken.insert(name, kind);
  return taken;
}

bool isShown(const fennick::DirectoryEntry &entry) {
  return entry.kind == fennick::FileKind::directory &&
         (fennick::isPhotoFolderName(entry.name) || entry.name == fennick::kExportFolder);
}

// Collects the folders below `folder`, as deep as photos may lie; `prefix` is its own path with "/".
void collect(const fs::path &folder, const std::string &prefix, int levels, fennick::FileSystem &files,
             std::vector<std::string> &found) {
  const auto entries = files.list(folder);
  if (levels == 0 || !entries)
    return;
  for (const auto &entry : *entries) {
    if (!isShown(entry) || found.size() == kMostGalleries)
      continue;
    found.push_back(prefix + entry.name);
    collect(folder / entry.name, prefix + entry.name + "/", levels - 1, files, found);
  }
}

} // namespace

UploadFolder lookAtUploadFolder(const fennick::SaveDestination &destination, fennick::Instant instant,
                                fennick::FileSystem &files) {
  UploadFolder seen{.folder = destination.directory(instant)};
  const auto taken = namesIn(seen.folder, files);
  seen.nextName =
      fennick::NameGenerator::generate(destination.naming, instant, "jpg", taken, std::nullopt).name;
  seen.media = taken.mediaCount();
  collect(destination.folder, {}, fennick::kDeepestPhotoLevel, files, seen.galleries);
  std::ranges::sort(seen.galleries);
  return seen;
}

} // namespace quarrow
