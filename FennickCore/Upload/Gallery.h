#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What phones may see of the gallery folder: the photos directly in it, no videos, no hidden files, no links,
// nothing whose name cannot be asked for, and nothing that the filter hides; a null filter hides nothing. Any
// thread.
namespace fennick {

struct GalleryEntry {
  std::string name;
  std::int64_t bytes = 0;
  std::int64_t time = 0; // FileStatus::created in whole seconds since 1970
  std::string version;   // see galleryVersion
  bool operator==(const GalleryEntry &) const = default;
};

// Keeps photos away from phones. Any thread.
class GalleryFilter {
public:
  virtual ~GalleryFilter() = default;
  // Whether `hides` has to be asked about files in `folder`. Called once the files are known to be there: a
  // photo that must not be shown is known to the filter before it can be found in its folder.
  virtual bool isActive(const std::filesystem::path &folder) = 0;
  // Without `status` only the path counts, and a photo that was renamed lately may be overlooked.
  virtual bool hides(const std::filesystem::path &file, const FileStatus *status) = 0;
};

struct GalleryListing {
  std::vector<GalleryEntry> photos; // the first 500
  std::int64_t total = 0;           // of all that phones may see
};

// The photos in the order of the photo wall: as the user arranged them, then newest first. Empty if the
// folder cannot be read.
[[nodiscard]] GalleryListing galleryListing(const std::filesystem::path &folder,
                                            GalleryFilter *filter = nullptr);
[[nodiscard]] inline std::vector<GalleryEntry> galleryList(const std::filesystem::path &folder,
                                                           GalleryFilter *filter = nullptr) {
  return galleryListing(folder, filter).photos;
}

// A short text that is fit for addresses and differs whenever another content may be under the file's name.
// Empty if there is no such file.
[[nodiscard]] std::string galleryVersion(const std::filesystem::path &file);

// How many photos phones may see there, more than 500 included; 0 when the folder cannot be read.
[[nodiscard]] std::int64_t galleryCount(const std::filesystem::path &folder, GalleryFilter *filter = nullptr);

// The file that "/thumb/NAME" or "/file/NAME" asks for, `path` as it was sent; nothing unless NAME is that of
// a photo that the gallery may show.
[[nodiscard]] std::optional<std::filesystem::path>
galleryFile(std::string_view path, const std::filesystem::path &folder, GalleryFilter *filter = nullptr);

// The media type of a photo or video by its first bytes; "application/octet-stream" for all else.
[[nodiscard]] std::string_view galleryMediaType(const std::filesystem::path &file);

} // namespace fennick
