#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>
#include <string_view>

// Change only the EXIF orientation of a file, for each format; see Orientation.h. Pure functions; any thread.
namespace fennick::picture {

using Turned = std::expected<std::string, PictureFault>;

// Positions of further pictures in the file are corrected.
[[nodiscard]] Turned jpegWithOrientation(std::string_view file, std::uint16_t orientation);
[[nodiscard]] Turned pngWithOrientation(std::string_view file, std::uint16_t orientation);
// A file without EXIF gets the extended header that announces it.
[[nodiscard]] Turned webpWithOrientation(std::string_view file, std::uint16_t orientation);
// Changes the first page.
[[nodiscard]] Turned tiffWithOrientation(std::string_view file, std::uint16_t orientation);
[[nodiscard]] std::optional<std::int64_t> tiffOrientation(std::string_view file);

} // namespace fennick::picture
