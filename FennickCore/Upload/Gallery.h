#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What phones may see of the gallery folder: the photos directly in it, without videos, hidden files, links,
// names that cannot be part of a URL, and photos that the filter hides; a null filter hides nothing. Any
// thread.
namespace fennick {

struct GalleryEntry {
  std::string name;
  std::int64_t bytes = 0;
  std::int64_t time = 0; // FileStatus::created in whole seconds since 1970
  std::string version;   // see galleryVersion
  bool operator==(const GalleryEntry &) const = default;
};

// Hides photos from phones. Any thread.
class GalleryFilter {
public:
  virtual ~GalleryFilter() = default;
  // Returns whether `hides` has to be called for files in `folder`. Call it after listing the folder: the
  // filter knows of a photo that must be hidden before the photo appears in its folder.
  virtual bool isActive(const std::filesystem::path &folder) = 0;
  // Without `status` only the path is compared, so that a photo that was renamed recently may be missed.
  virtual bool hides(const std::filesystem::path &file, const FileStatus *status) = 0;
};

struct GalleryListing {
  std::vector<GalleryEntry> photos; // the first 500
  std::int64_t total = 0;           // of all that phones may see
};

// Returns the photos in the order of the photo wall: as arranged by the user, then newest first. Empty if the
// folder cannot be read.
[[nodiscard]] GalleryListing galleryListing(const std::filesystem::path &folder,
                                            GalleryFilter *filter = nullptr);
[[nodiscard]] inline std::vector<GalleryEntry> galleryList(const std::filesystem::path &folder,
                                                           GalleryFilter *filter = nullptr) {
  return galleryListing(folder, filter).photos;
}

// Returns a short text for URLs that changes whenever the file under this name may have other content. Empty
// if there is no such file.
[[nodiscard]] std::string galleryVersion(const std::filesystem::path &file);

// Returns the number of photos that phones may see, including those beyond 500; 0 if the folder cannot be
// read.
[[nodiscard]] std::int64_t galleryCount(const std::filesystem::path &folder, GalleryFilter *filter = nullptr);

// Returns the file for "/thumb/NAME" or "/file/NAME", `path` being the path of the request. Returns nullopt
// unless NAME is a photo that the gallery may show.
[[nodiscard]] std::optional<std::filesystem::path>
galleryFile(std::string_view path, const std::filesystem::path &folder, GalleryFilter *filter = nullptr);

// Returns the media type of a photo or video by its first bytes, or "application/octet-stream" for all other
// files.
[[nodiscard]] std::string_view galleryMediaType(const std::filesystem::path &file);

} // namespace fennick
