#pragma once

#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <optional>
#include <string_view>

// Tells camera raw files, most of which have the structure of a TIFF, from TIFF pictures. Names of files do
// not count. Pure functions; any thread.
namespace fennick::picture {

// The raw format of a TIFF structure; nullopt if its first directory holds the picture itself, or if what it
// holds in its place is not known to be a camera's.
[[nodiscard]] std::optional<PictureType> rawTypeOf(std::string_view file, const TiffLayout &layout);

// Whether the first directory is only a small version of a picture that stands elsewhere in the file.
[[nodiscard]] bool startsWithReducedPicture(std::string_view file);

// Whether the first directory holds a picture that can be shown, whatever its size, and no sensor data.
[[nodiscard]] bool startsWithPicture(std::string_view file);

} // namespace fennick::picture
