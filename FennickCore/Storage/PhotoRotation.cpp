#include "FennickCore/Storage/PhotoRotation.h"

#include "FennickCore/Platform/Files/AsideFile.h"
#include "FennickCore/Platform/Files/FileAttributes.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Storage/Leftovers.h"

#include <array>
#include <tuple>

namespace fennick::PhotoFileOps {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kOrientations = 8;
constexpr std::int64_t kAfterUnknown = 6; // in both directions, if the file has no valid orientation

// The new orientation for each old one, beginning with 1.
constexpr std::array<std::int64_t, kOrientations> kClockwise{6, 7, 8, 5, 2, 3, 4, 1};
constexpr std::array<std::int64_t, kOrientations> kAnticlockwise{8, 5, 6, 7, 4, 1, 2, 3};

std::int64_t turned(std::int64_t orientation, QuarterTurn turn) {
  if (orientation < 1 || orientation > kOrientations)
    return kAfterUnknown;
  const auto &map = turn == QuarterTurn::clockwise ? kClockwise : kAnticlockwise;
  return map.at(static_cast<std::size_t>(orientation - 1));
}

bool saysNotAnImage(PictureFault fault) {
  return fault == PictureFault::notAPicture || fault == PictureFault::unreadable ||
         fault == PictureFault::undecodable;
}

std::unexpected<OpError> failure(OpError::Kind kind) { return std::unexpected(OpError{.kind = kind}); }

// Copies the attributes of the old file to the new one. The time is a whole second, since some caches keep no
// fractions.
IOResult<void> copyAttributes(const fs::path &file, const FileStatus &old) {
  FileStatus wanted = old;
  wanted.modified = std::chrono::floor<std::chrono::seconds>(old.modified) + std::chrono::seconds(1);
  return copyPermissionsAndTime(wanted, file);
}

// Replaces `file` by one with `content`, unless it has changed since `old` was read.
IOResult<void> exchange(const fs::path &file, std::string_view content, const FileStatus &old,
                        FileSystem &files) {
  const FolderUse use(file.parent_path());
  const fs::path aside = temporaryIn(file.parent_path(), Temporary::rotation);
  if (auto written = writeAside(files, aside, content, Durability::onDisk); !written)
    return written;
  copyUserAttributes(file, aside);
  auto result = copyAttributes(aside, old);
  if (result && fileStatus(file) != old)
    result = std::unexpected(std::make_error_code(std::errc::resource_unavailable_try_again));
  if (result)
    result = files.replace(aside, file);
  if (!result)
    std::ignore = files.remove(aside);
  return result;
}

} // namespace

Result<void> rotate(const fs::path &file, QuarterTurn turn, PictureDecoder &decoder, FileSystem &files) {
  const auto old = fileStatus(file);
  if (!old || old->kind != FileKind::regular)
    return failure(OpError::Kind::notAnImage);
  const auto facts = decoder.facts(file);
  if (!facts)
    return failure(saysNotAnImage(facts.error().fault) ? OpError::Kind::notAnImage
                                                       : OpError::Kind::writeFailed);
  const auto rotated = decoder.withOrientation(file, turned(facts->orientation.value_or(kUpright), turn));
  if (!rotated || rotated->empty() || !exchange(file, *rotated, *old, files))
    return failure(OpError::Kind::writeFailed);
  // Both versions are complete: a power cut leaves one of them.
  std::ignore = files.syncDirectory(file.parent_path());
  return {};
}

} // namespace fennick::PhotoFileOps
