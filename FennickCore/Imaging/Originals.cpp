#include "FennickCore/Imaging/Originals.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/FileAttributes.h"
#include "FennickCore/Platform/Files/FileCopy.h"
#include "FennickCore/Platform/Files/FreeName.h"
#include "FennickCore/Platform/System/Random.h"

#include <tuple>

namespace fennick::ImagePipeline {

namespace fs = std::filesystem;

namespace {

IOResult<fs::path> makeOriginals(const fs::path &source, FileSystem &files) {
  fs::path folder = source.parent_path() / kOriginalsFolder;
  if (auto made = files.createDirectories(folder); !made)
    return std::unexpected(made.error());
  return folder;
}

bool isSameFile(const fs::path &one, const fs::path &other) {
  const auto identity = fileIdentity(one);
  return identity && identity == fileIdentity(other);
}

IOResult<fs::path> moveToOriginals(const fs::path &source, FileSystem &files) {
  const auto folder = makeOriginals(source, files);
  if (!folder)
    return folder;
  auto kept = underFreeName(*folder, source.filename(), [&](const fs::path &target) {
    if (isSameFile(source, target)) // a move was interrupted after the new name was made
      return files.remove(source);
    return files.moveNoReplace(source, target);
  });
  if (kept)
    std::ignore = files.syncDirectory(*folder); // after a power cut it is in one of the two folders
  return kept;
}

// Returns whether an interrupted attempt left this copy of `source`: a second name, or the same bytes.
bool isCopyOf(const fs::path &source, const FileStatus &status, const fs::path &candidate) {
  const auto found = fileStatus(candidate);
  return found && found->kind == FileKind::regular && found->bytes == status.bytes &&
         (found->identity == status.identity || haveSameContent(source, candidate));
}

// Places a copy with `take` under the name of `source` in `folder`, or a similar free name, unless it exists
// already.
template <typename Take>
IOResult<KeptCopy> takeOrReuse(const fs::path &source, const FileStatus &status, const fs::path &folder,
                               Take take) {
  KeptCopy kept{.isNew = true};
  auto file = underFreeName(folder, source.filename(), [&](const fs::path &target) -> IOResult<void> {
    if (!isCopyOf(source, status, target))
      return take(target);
    kept.isNew = false;
    return {};
  });
  if (!file)
    return std::unexpected(file.error());
  kept.file = std::move(*file);
  return kept;
}

IOResult<KeptCopy> copyWhole(const fs::path &source, const FileStatus &status, const fs::path &folder,
                             const fs::path &workFolder, FileSystem &files) {
  const fs::path aside = workFolder / (newUUID() + std::string(kProcessedSuffix));
  if (const auto copied = copyFile(files, source, aside); !copied)
    return std::unexpected(copied.error());
  copyUserAttributes(source, aside);
  IOResult<KeptCopy> kept;
  if (const auto dressed = copyPermissionsAndTime(status, aside); dressed)
    kept = takeOrReuse(source, status, folder,
                       [&](const fs::path &target) { return files.moveNoReplace(aside, target); });
  else
    kept = std::unexpected(dressed.error());
  if (!kept || !kept->isNew)
    std::ignore = files.remove(aside);
  return kept;
}

} // namespace

OriginalFate fateOf(const ImagingOptions &options, FormatChoice choice) {
  if (options.keepOriginal)
    return OriginalFate::keep;
  return choice == FormatChoice::program ? OriginalFate::trash : OriginalFate::remove;
}

IOResult<Original> disposeOfOriginal(const fs::path &source, OriginalFate fate, const Services &services) {
  if (fate == OriginalFate::remove) {
    if (const auto removed = services.files.remove(source); !removed)
      return std::unexpected(removed.error());
    return Original{};
  }
  if (fate == OriginalFate::trash && services.trash != nullptr && services.trash->moveToTrash(source))
    return Original{.fate = OriginalFate::trash};
  auto kept = moveToOriginals(source, services.files);
  if (!kept)
    return std::unexpected(kept.error());
  return Original{.fate = OriginalFate::keep, .file = std::move(*kept)};
}

IOResult<KeptCopy> keepCopy(const fs::path &source, const FileStatus &status, const fs::path &workFolder,
                            FileSystem &files) {
  const auto folder = makeOriginals(source, files);
  if (!folder)
    return std::unexpected(folder.error());
  auto kept = takeOrReuse(source, status, *folder,
                          [&](const fs::path &target) { return files.link(source, target); });
  if (!kept && kept.error() != std::errc::file_exists)
    kept = copyWhole(source, status, *folder, workFolder, files);
  if (!kept)
    return kept;
  if (const auto synced = files.syncDirectory(*folder); !synced) {
    if (kept->isNew)
      std::ignore = files.remove(kept->file);
    return std::unexpected(synced.error());
  }
  return kept;
}

} // namespace fennick::ImagePipeline
