#pragma once

#include "FennickCore/Imaging/PictureTypes.h"

#include <string_view>

namespace fennick::picture {

// What a TIFF structure - an EXIF block without "Exif\0\0", or a whole TIFF file - says of how the picture
// was taken. What is damaged or makes no sense counts as not said. Pure function; any thread.
[[nodiscard]] PictureDetails exifDetails(std::string_view tiff);

} // namespace fennick::picture
