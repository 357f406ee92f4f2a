#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What phones may see of the gallery folder: the photos directly in it, no videos, no hidden files, no links,
// nothing whose name cannot be asked for. Any thread.
namespace fennick {

struct GalleryEntry {
  std::string name;
  std::int64_t bytes = 0;
  std::int64_t time = 0; // FileStatus::created in whole seconds since 1970
  bool operator==(const GalleryEntry &) const = default;
};

// The first 500 photos in the order of the photo wall: as the person arranged them, then newest first. Empty
// when the folder cannot be read.
[[nodiscard]] std::vector<GalleryEntry> galleryList(const std::filesystem::path &folder);

// How many photos phones may see there, more than 500 included; 0 when the folder cannot be read.
[[nodiscard]] std::int64_t galleryCount(const std::filesystem::path &folder);

// The file that "/thumb/NAME" or "/file/NAME" asks for, `path` as it was sent; nothing unless NAME is that of
// a photo that the gallery may show.
[[nodiscard]] std::optional<std::filesystem::path> galleryFile(std::string_view path,
                                                               const std::filesystem::path &folder);

// The media type of a photo or video by its first bytes; "application/octet-stream" for all else.
[[nodiscard]] std::string_view galleryMediaType(const std::filesystem::path &file);

} // namespace fennick
