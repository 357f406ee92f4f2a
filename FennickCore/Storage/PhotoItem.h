#pragma once

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

// One photo or video of the save folder, as the photo wall shows it; `url` tells it from all others. A value;
// any thread.
struct PhotoItem {
  std::filesystem::path url;
  std::string name; // the last component of `url`
  std::int64_t bytes = 0;
  Instant date;                            // FileStatus::created
  std::optional<std::int64_t> pixelWidth;  // as shown, turned upright; absent for videos and for pictures
  std::optional<std::int64_t> pixelHeight; // that cannot be read
  bool isVideo = false;
  bool isImage = false;
  bool isOversized = false; // fails the check of ImageLimits: never decoded

  // Whether the picture is known to be beyond the limits. A header that cannot be read fails the check, too.
  [[nodiscard]] bool isTooLarge() const { return isOversized && pixelWidth && pixelHeight; }

  bool operator==(const PhotoItem &) const = default;
};

// How a file's name changed, as paths.
struct Renaming {
  std::filesystem::path from;
  std::filesystem::path to;
  bool operator==(const Renaming &) const = default;
};

// Whether a name is that of a video; of the media extensions, all others are pictures.
[[nodiscard]] bool isVideoName(std::string_view name);

// Photos lie in the save folder and down to this many levels below it: a day's folder and a session's in it.
inline constexpr int kDeepestPhotoLevel = 2;
// Whether photos are looked for in a sub-folder of that name: not in hidden and reserved ones.
[[nodiscard]] bool isPhotoFolderName(std::string_view name);

} // namespace fennick
