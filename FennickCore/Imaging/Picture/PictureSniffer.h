#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <optional>

// What a file is, by what is in it. Pure functions; any thread.
namespace fennick::picture {

// Nothing for anything that is not a picture: videos, and pictures of other kinds. A camera raw
// file with the structure of a TIFF is told by rawTypeOf.
[[nodiscard]] std::optional<PictureType> sniffType(Bytes bytes);

// How many pictures a PNG holds: 1, or for an animation its frames and its still picture.
[[nodiscard]] std::int64_t apngFrames(Bytes bytes);

// Returns how many full pictures a JPEG file says that it holds, as stereo and multi-angle cameras write
// them; 1 for all others. Previews, gain maps and depth maps are parts of the one picture and do not count.
[[nodiscard]] std::int64_t jpegFrames(Bytes bytes);

} // namespace fennick::picture
