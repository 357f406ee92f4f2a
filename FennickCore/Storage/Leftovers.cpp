#include "FennickCore/Storage/Leftovers.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/FreeName.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"
#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <vector>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestName = 255; // bytes, on every Linux file system
constexpr std::size_t kUUIDLength = 36;

struct Shape {
  std::string prefix;
  std::string_view suffix;
};

Shape shapeOf(Temporary kind) {
  switch (kind) {
  case Temporary::rotation:
    return {.prefix = ".rotate-", .suffix = ".tmp"};
  case Temporary::order:
    return {.prefix = std::string(kOrderFile) + ".", .suffix = ".tmp"};
  case Temporary::exported:
    return {.prefix = ".export-", .suffix = ".part"};
  case Temporary::thumbnail:
    break;
  }
  return {.prefix = ".", .suffix = ".tmp"};
}

bool isTemporary(std::string_view name, Temporary kind) {
  const auto [prefix, suffix] = shapeOf(kind);
  return name.size() == prefix.size() + kUUIDLength + suffix.size() && name.starts_with(prefix) &&
         name.ends_with(suffix) && isUUID(name.substr(prefix.size(), kUUIDLength));
}

bool isPhotoTemporary(std::string_view name) {
  return isTemporary(name, Temporary::rotation) || isTemporary(name, Temporary::order) ||
         isTemporary(name, Temporary::exported);
}

// Returns the photo's own name from its batch name, or nullopt if `name` is not a batch name. The rest of a
// long name must not make the photo hidden.
std::optional<std::string_view> nameBeforeBatch(std::string_view name) {
  if (name.size() <= kUUIDLength || name[kUUIDLength] != '-' || !isUUID(name.substr(0, kUUIDLength)))
    return std::nullopt;
  name.remove_prefix(std::min(name.find_first_not_of('.', kUUIDLength + 1), name.size()));
  return countsAsMedia(name, FileKind::regular) ? std::optional(name) : std::nullopt;
}

// Follows a link to the folder, since a save folder may be one.
IOResult<DirectoryLock> tryLockFolder(const fs::path &folder, DirectoryLock::Mode mode) {
  std::error_code failed;
  const fs::path canonical = fs::canonical(folder, failed);
  return failed ? std::unexpected(failed) : DirectoryLock::tryLock(canonical, mode);
}

void restore(const fs::path &folder, const std::string &batchName, std::string_view name, FileSystem &files) {
  const auto restored = underFreeName(
      folder, name, [&](const fs::path &target) { return files.moveNoReplace(folder / batchName, target); });
  if (restored)
    log(fmt::format("an interrupted renaming left {}, now {}", displayText(batchName),
                    displayText(restored->filename().native())));
}

void remove(const fs::path &folder, std::span<const std::string> names, FileSystem &files) {
  const auto removed = std::ranges::count_if(
      names, [&](const std::string &name) { return files.remove(folder / name).has_value(); });
  if (removed > 0)
    log(fmt::format("removed {} temporary files of an earlier run from {}", removed,
                    displayText(folder.native())));
}

void clear(const fs::path &folder, std::span<const DirectoryEntry> entries, FileSystem &files) {
  std::vector<std::string> temporaries;
  std::vector<std::string> photos;
  for (const auto &[name, kind] : entries)
    if (kind == FileKind::regular && isPhotoTemporary(name))
      temporaries.push_back(name);
    else if (kind == FileKind::regular && nameBeforeBatch(name))
      photos.push_back(name);
  if (temporaries.empty() && photos.empty())
    return;
  const auto alone = tryLockFolder(folder, DirectoryLock::Mode::exclusive);
  if (!alone)
    return;
  remove(folder, temporaries, files);
  for (const auto &photo : photos)
    restore(folder, photo, *nameBeforeBatch(photo), files);
  if (!photos.empty())
    std::ignore = files.syncDirectory(folder);
}

// Clears a folder and the folders in it that may contain photos.
void clearBelow(const fs::path &folder, int level, FileSystem &files,
                const std::function<bool()> &isStopped) {
  if (isStopped())
    return;
  const auto entries = files.list(folder);
  if (!entries)
    return;
  clear(folder, *entries, files);
  for (const auto &[name, kind] : *entries)
    if (kind == FileKind::directory && level < kDeepestPhotoLevel && isPhotoFolderName(name))
      clearBelow(folder / name, level + 1, files, isStopped);
}

} // namespace

fs::path temporaryIn(const fs::path &folder, Temporary kind) {
  const auto [prefix, suffix] = shapeOf(kind);
  return folder / fmt::format("{}{}{}", prefix, newUUID(), suffix);
}

std::string batchName(const std::string &name) {
  const std::string prefix = newUUID() + "-";
  if (prefix.size() + name.size() <= kLongestName)
    return prefix + name;
  std::size_t cut = prefix.size() + name.size() - kLongestName;
  while (cut < name.size() && (static_cast<unsigned char>(name[cut]) & 0xC0U) == 0x80U)
    ++cut;
  return prefix + name.substr(cut);
}

FolderUse::FolderUse(const fs::path &folder) : lock_(tryLockFolder(folder, DirectoryLock::Mode::shared)) {}

void clearLeftovers(const fs::path &folder, FileSystem &files) {
  if (const auto entries = files.list(folder))
    clear(folder, *entries, files);
}

void clearSaveFolder(const fs::path &saveFolder, FileSystem &files, const std::function<bool()> &isStopped) {
  clearBelow(saveFolder, 0, files, isStopped);
  const fs::path exported = saveFolder / kExportFolder;
  if (!isStopped() && fileKind(exported) == FileKind::directory)
    clearLeftovers(exported, files);
}

void clearThumbnailLeftovers(const fs::path &folder, FileSystem &files) {
  const auto entries = files.list(folder);
  if (!entries)
    return;
  std::vector<std::string> left;
  for (const auto &[name, kind] : *entries)
    if (kind == FileKind::regular && isTemporary(name, Temporary::thumbnail))
      left.push_back(name);
  if (!left.empty() && tryLockFolder(folder, DirectoryLock::Mode::exclusive))
    remove(folder, left, files);
}

} // namespace fennick
