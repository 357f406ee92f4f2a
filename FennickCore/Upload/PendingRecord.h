#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Upload/UploadRecord.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// The record of a received photo whose processing is not over, or which contains private data that should
// have been removed: one file in the work folder inside the save folder. Pure functions; any thread.
namespace fennick {

// Identifies a file of a save folder after it was renamed or moved within its file system.
struct PhotoIdentity {
  std::uint64_t inode = 0;
  std::int64_t bytes = 0;
  Instant modified{};

  [[nodiscard]] static PhotoIdentity of(const FileStatus &status) {
    return {.inode = status.identity.inode, .bytes = status.bytes, .modified = status.modified};
  }
  // Compares without the inode, since FAT and some network drives may renumber files at any time.
  [[nodiscard]] bool isSameVersion(const PhotoIdentity &other) const {
    return bytes == other.bytes && modified == other.modified;
  }
  // Compares with the resolution of time that a file system may have.
  [[nodiscard]] bool looksLike(const PhotoIdentity &other) const;
  bool operator==(const PhotoIdentity &) const = default;
};

// An encoding that is about to be moved from `output` to `target`.
struct PendingPlacing {
  std::filesystem::path output;
  std::filesystem::path target;
  PhotoIdentity encoding;
  PrivateData remaining; // what the encoding may still contain

  bool operator==(const PendingPlacing &) const = default;
};

struct PendingRecord {
  UploadRecord upload; // with the path at which the photo is, or is about to appear
  PhotoIdentity photo;
  std::optional<PendingPlacing> placing{};
  // Set after the processing if the photo still contains data that was to be removed.
  std::optional<PrivateData> kept{};

  bool operator==(const PendingRecord &) const = default;
};

inline constexpr std::string_view kPendingSuffix = ".pending";

// Returns a name for a new record of the photo. It contains the identity, so that even a damaged record tells
// which photo must be hidden.
[[nodiscard]] std::string pendingName(const PhotoIdentity &photo);
// Returns nullopt if `name` is not the name of a record.
[[nodiscard]] std::optional<PhotoIdentity> pendingIdentity(std::string_view name);

// Paths are written relative to the save folder.
[[nodiscard]] std::string encodePending(const PendingRecord &record);
// Returns nullopt if `text` is not a record or names a file outside `saveFolder`.
[[nodiscard]] std::optional<PendingRecord> decodePending(std::string_view text,
                                                         const std::filesystem::path &saveFolder);

} // namespace fennick
