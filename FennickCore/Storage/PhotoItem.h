#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

// One photo or video of the save folder as the photo wall shows it, identified by `url`. A value; any thread.
struct PhotoItem {
  std::filesystem::path url;
  std::string name; // the last component of `url`
  std::int64_t bytes = 0;
  Instant date;                            // FileStatus::created
  std::optional<std::int64_t> pixelWidth;  // as shown, turned upright; absent for videos and for pictures
  std::optional<std::int64_t> pixelHeight; // nullopt if it cannot be read
  bool isVideo = false;
  bool isImage = false;
  bool isOversized = false; // exceeds ImageLimits: never decoded

  // Returns whether the picture is known to exceed the limits. A header that cannot be read sets
  // `isOversized`, too.
  [[nodiscard]] bool isTooLarge() const { return isOversized && pixelWidth && pixelHeight; }

  bool operator==(const PhotoItem &) const = default;
};

// A change of a file's path.
struct Renaming {
  std::filesystem::path from;
  std::filesystem::path to;
  bool operator==(const Renaming &) const = default;
};

// Returns whether the name is that of a video; files with other media extensions are pictures.
[[nodiscard]] bool isVideoName(std::string_view name);

// How deep below the save folder photos may lie: a day's folder and a session's folder in it.
inline constexpr int kDeepestPhotoLevel = 2;
// Returns whether a sub-folder of that name may contain photos. Hidden and reserved folders may not.
[[nodiscard]] bool isPhotoFolderName(std::string_view name);

} // namespace fennick
