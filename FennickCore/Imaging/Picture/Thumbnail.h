#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <string>

namespace fennick::picture {

// Makes a thumbnail: see PictureDecoder::thumbnail. Called in the imaging process, one at a time; catches the
// exceptions of all libraries.
[[nodiscard]] PictureResult<std::string> makeThumbnail(Bytes file, std::int64_t maxPixel, double quality);

} // namespace fennick::picture
