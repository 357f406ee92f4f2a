#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <string_view>

// Which files count as photos and videos, decided from the name. Pure functions; any thread.
namespace fennick {

// Names inside the save folder that are not photos.
inline constexpr std::string_view kOriginalsFolder = "originals";        // untouched uploads
inline constexpr std::string_view kExportFolder = "export";              // batch export
inline constexpr std::string_view kIncomingFolder = ".fennick-incoming"; // part files and temporaries
inline constexpr std::string_view kProcessedSuffix = ".out";             // of temporaries in there
inline constexpr std::string_view kOrderFile = ".fennick-order.json";    // custom order of a folder

// Whether `extension` (lower case, no dot) is one of a photo or video: jpg, jpeg, png, heic, heif, hif, dng,
// tif, tiff, gif, webp, avif, mov, mp4, m4v.
[[nodiscard]] bool isMediaExtension(std::string_view extension);

// Whether a folder's entry counts against the folder limit: a regular file, not hidden, with a media
// extension in any case.
[[nodiscard]] bool countsAsMedia(std::string_view name, FileKind kind);

} // namespace fennick
