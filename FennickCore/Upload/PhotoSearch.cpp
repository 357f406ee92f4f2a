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
    const auto present = PhotoIdentity::of(entry.status);
    for (std::size_t i = 0; i < photos.size(); ++i)
      if (present == photos[i] || (!found[i] && present.isSameVersion(photos[i])))
        found[i] = folder / entry.name;
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
