#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <string_view>

// Decides from the name which files are photos and videos. Pure functions; any thread.
namespace fennick {

// Names inside the save folder that are not photos.
inline constexpr std::string_view kOriginalsFolder = "originals";        // untouched uploads
inline constexpr std::string_view kExportFolder = "export";              // batch export
inline constexpr std::string_view kIncomingFolder = ".fennick-incoming"; // part files and temporary files
inline constexpr std::string_view kProcessedSuffix = ".out";             // of temporaries in there
inline constexpr std::string_view kOrderFile = ".fennick-order.json";    // custom order of a folder

// Returns whether `extension` (lower case, no dot) is that of a photo or video: jpg, jpeg, png, heic, heif,
// hif, dng, tif, tiff, gif, webp, avif, mov, mp4, m4v.
[[nodiscard]] bool isMediaExtension(std::string_view extension);

// Returns whether a folder's entry counts for the folder limit: a regular file, not hidden, with a media
// extension in any case.
[[nodiscard]] bool countsAsMedia(std::string_view name, FileKind kind);

} // namespace fennick
