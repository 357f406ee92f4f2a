#include "FennickCore/Upload/PhotoSearch.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <algorithm>

namespace fennick {

namespace fs = std::filesystem;

namespace {

using Found = std::vector<std::optional<fs::path>>;

void search(const fs::path &folder, int level, const std::vector<PhotoIdentity> &photos, Found &found) {
  std::vector<std::string> folders;
  const auto entries = readFolder(folder, level == 0 ? Links::follow : Links::refuse,
                                  [&](std::string_view name, FileKind kind) {
                                    if (kind == FileKind::directory && isPhotoFolderName(name))
                                      folders.emplace_back(name);
                                    return countsAsMedia(name, kind);
                                  });
  if (!entries)
    return;
  for (const auto &entry : *entries) {
    const auto photo = std::ranges::find(photos, PhotoIdentity::of(entry.status));
    if (photo != photos.end())
      found[static_cast<std::size_t>(photo - photos.begin())] = folder / entry.name;
  }
  if (level < kDeepestPhotoLevel)
    for (const auto &name : folders)
      search(folder / name, level + 1, photos, found);
}

} // namespace

std::optional<PhotoIdentity> photoAt(const fs::path &file) {
  const auto status = fileStatus(file);
  if (!status || status->kind != FileKind::regular)
    return std::nullopt;
  return PhotoIdentity::of(*status);
}

std::vector<std::optional<fs::path>> findPhotos(const fs::path &saveFolder,
                                                const std::vector<PhotoIdentity> &photos) {
  Found found(photos.size());
  if (!photos.empty())
    search(saveFolder, 0, photos, found);
  return found;
}

} // namespace fennick
