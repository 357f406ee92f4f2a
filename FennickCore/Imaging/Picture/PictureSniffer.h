#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <optional>

// Determines the type of a file from its content. Pure functions; any thread.
namespace fennick::picture {

// Returns nullopt for videos and for pictures of other kinds. For a camera raw file with the structure of a
// TIFF see rawTypeOf.
[[nodiscard]] std::optional<PictureType> sniffType(Bytes bytes);

// Returns the number of pictures in a PNG: 1, or for an animation its frames and its still picture.
[[nodiscard]] std::int64_t apngFrames(Bytes bytes);

// Returns how many full pictures a JPEG file states, as written by stereo and multi-angle cameras; 1 for all
// others. Previews, gain maps and depth maps belong to the one picture and do not count.
[[nodiscard]] std::int64_t jpegFrames(Bytes bytes);

} // namespace fennick::picture
