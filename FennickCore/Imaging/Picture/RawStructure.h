#pragma once

#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <optional>
#include <string_view>

// Distinguishes camera raw files, most of which have the structure of a TIFF, from TIFF pictures. File names
// do not count. Pure functions; any thread.
namespace fennick::picture {

// Returns the raw format of a TIFF structure, or nullopt if its first directory contains the picture itself
// or data that is not known to be a camera's.
[[nodiscard]] std::optional<PictureType> rawTypeOf(std::string_view file, const TiffLayout &layout);

// Returns whether the first directory is only a small version of a picture elsewhere in the file.
[[nodiscard]] bool startsWithReducedPicture(std::string_view file);

// Returns whether the first directory contains a displayable picture of any size, and no sensor data.
[[nodiscard]] bool startsWithPicture(std::string_view file);

} // namespace fennick::picture
