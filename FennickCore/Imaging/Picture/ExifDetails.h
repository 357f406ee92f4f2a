#pragma once

#include "FennickCore/Imaging/PictureTypes.h"

#include <string_view>

namespace fennick::picture {

// Reads from a TIFF structure (an EXIF block without "Exif\0\0", or a whole TIFF file) how the picture was
// taken. Damaged and implausible values are skipped. Pure function; any thread.
[[nodiscard]] PictureDetails exifDetails(std::string_view tiff);

} // namespace fennick::picture
