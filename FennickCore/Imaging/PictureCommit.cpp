#include "FennickCore/Imaging/PictureCommit.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/AsideFile.h"
#include "FennickCore/Platform/Files/FileAttributes.h"
#include "FennickCore/Platform/Files/FreeName.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"

#include <fmt/format.h>

#include <tuple>
#include <utility>

namespace fennick::ImagePipeline {

namespace fs = std::filesystem;

namespace {

// Returns the hidden work folder of uploads, in `folder` or one of two levels above, or else one in `folder`
// itself.
fs::path workFolder(const fs::path &folder) {
  fs::path above = folder;
  for (int level = 0; level <= 2; ++level, above = above.parent_path())
    if (const auto kind = fileKind(above / kIncomingFolder); kind && *kind == FileKind::directory)
      return above / kIncomingFolder;
  return folder / kIncomingFolder;
}

// Another program may have renamed, changed or deleted the photo meanwhile: its version counts.
bool isStillThere(const fs::path &url, const FileStatus &before) {
  const auto now = fileStatus(url);
  return now && now->identity == before.identity && now->bytes == before.bytes &&
         now->modified == before.modified;
}

} // namespace

PictureCommit::PictureCommit(const fs::path &source, const FileStatus &status, OriginalFate fate,
                             const Services &services)
    : source_(source), status_(status), fate_(fate), services_(services), files_(services.files),
      output_(workFolder(source.parent_path()) / (newUUID() + std::string(kProcessedSuffix))) {}

// Removes the record before the file: a record without its file would mean that the encoding was placed.
PictureCommit::~PictureCommit() {
  if (isAnnounced_)
    services_.journal->didNotPlace(source_);
  if (isWritten_)
    std::ignore = files_.remove(output_);
}

IOResult<void> PictureCommit::write(std::string_view bytes) {
  if (auto made = files_.createDirectories(output_.parent_path()); !made)
    return made;
  if (auto done = writeAside(files_, output_, bytes, Durability::onDisk); !done)
    return done;
  isWritten_ = true;
  copyUserAttributes(source_, output_);
  return copyPermissionsAndTime(status_, output_);
}

IOResult<PictureCommit::Placed> PictureCommit::place(std::string_view extension) {
  const fs::path name = source_.stem().concat(fmt::format(".{}", extension));
  return name == source_.filename() ? replaceSource() : placeBeside(name);
}

// Checks the photo once more, then calls the journal.
IOResult<void> PictureCommit::announce(const fs::path &target) {
  if (!isStillThere(source_, status_))
    return std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
  if (services_.journal == nullptr)
    return {};
  isAnnounced_ = true; // also on failure: part of the record may be on the disk
  return services_.journal->willPlace(source_, output_, target);
}

IOResult<PictureCommit::Placed> PictureCommit::replaceSource() {
  Placed placed{.file = source_, .original = {}};
  KeptCopy kept;
  if (fate_ != OriginalFate::remove) {
    auto copy = keepCopy(source_, status_, output_.parent_path(), files_);
    if (!copy)
      return std::unexpected(copy.error());
    kept = std::move(*copy);
    placed.original = {.fate = OriginalFate::keep, .file = kept.file};
  }
  auto replaced = announce(source_);
  if (replaced)
    replaced = files_.replace(output_, source_);
  if (!replaced) {
    if (kept.isNew)
      std::ignore = files_.remove(kept.file);
    return std::unexpected(replaced.error());
  }
  isWritten_ = isAnnounced_ = false;
  // The picture is complete under its name even if this fails.
  std::ignore = files_.syncDirectory(source_.parent_path());
  return placed;
}

IOResult<PictureCommit::Placed> PictureCommit::placeBeside(const fs::path &name) {
  const fs::path folder = source_.parent_path();
  const auto target = underFreeName(folder, name, [&](const fs::path &each) -> IOResult<void> {
    if (fileKind(each))
      return std::unexpected(std::make_error_code(std::errc::file_exists));
    if (auto announced = announce(each); !announced)
      return announced;
    return files_.moveNoReplace(output_, each);
  });
  if (!target)
    return std::unexpected(target.error());
  isWritten_ = false;
  // The new name is synced before the old one is removed.
  if (const auto synced = files_.syncDirectory(folder); !synced) {
    takeBack(*target);
    return std::unexpected(synced.error());
  }
  auto original = disposeOfOriginal(source_, fate_, services_);
  if (!original) {
    takeBack(*target);
    return std::unexpected(original.error());
  }
  isAnnounced_ = false;
  std::ignore = files_.syncDirectory(folder);
  return Placed{.file = *target, .original = std::move(*original)};
}

// The received file could not be removed: removes the encoding, so that the photo has one name. If that fails
// too, the journal keeps the record of both.
void PictureCommit::takeBack(const fs::path &target) {
  if (const auto removed = files_.remove(target); removed)
    return;
  isAnnounced_ = false;
  log(fmt::format("{} stays beside its new encoding {}", source_.filename().string(),
                  target.filename().string()));
}

} // namespace fennick::ImagePipeline
