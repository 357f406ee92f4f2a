#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fennick {

// The version of a photo that a thumbnail shows. A changed photo has another version.
struct PhotoVersion {
  std::int64_t bytes = 0;
  std::int64_t modified = 0; // in whole seconds since 1970
  bool operator==(const PhotoVersion &) const = default;
};

[[nodiscard]] PhotoVersion versionOf(const FileStatus &status);

// Thumbnails of one size on the disk. The file name contains the path and the version of the photo: see
// docs/files.md. Any thread. What the disk refuses is not kept.
class ThumbnailStore {
public:
  struct Entry {
    std::string name;  // of the file in the folder
    std::string photo; // one of the names that `namesOf` returns for its photo
    PhotoVersion version;
    std::int64_t bytes = 0; // allocated on the disk
    Instant used;           // when it was made or read last
  };

  // Creates `folder`. `files` outlives the object.
  ThumbnailStore(FileSystem &files, std::filesystem::path folder, std::int64_t maxPixel);

  // Returns nullopt if there is no undamaged thumbnail.
  [[nodiscard]] std::optional<std::string> read(const std::filesystem::path &photo,
                                                PhotoVersion version) const;
  // Returns false if it could not be stored.
  bool write(const std::filesystem::path &photo, PhotoVersion version, std::string_view data) const;
  void remove(const std::filesystem::path &photo, PhotoVersion version) const;
  void remove(const Entry &entry) const;
  void clear() const;

  // Returns all stored thumbnails. Removes files that do not belong here, except hidden ones.
  [[nodiscard]] std::vector<Entry> entries() const;

  // Returns the beginnings of the names of a photo's thumbnails: its path in plain characters, or its
  // checksum if that would be too long or the path is not UTF-8, or both if it depends on the version.
  // Several photos may have the same plain name.
  [[nodiscard]] static std::vector<std::string> namesOf(const std::filesystem::path &photo);
  // Returns the beginning of the plain names of all photos in and below `folder`.
  [[nodiscard]] static std::string prefixOf(const std::filesystem::path &folder);

private:
  [[nodiscard]] std::filesystem::path fileOf(const std::filesystem::path &photo, PhotoVersion version) const;
  [[nodiscard]] std::optional<Entry> parsed(const FolderEntry &file) const;

  FileSystem &files_;
  const std::filesystem::path folder_;
  const std::int64_t maxPixel_;
};

} // namespace fennick
