#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <optional>

// What a file is, by what is in it. Pure functions; any thread.
namespace fennick::picture {

// Nothing for anything that is not a picture: videos, and pictures of other kinds. A TIFF whose first
// directory carries a DNG version is a DNG.
[[nodiscard]] std::optional<PictureType> sniffType(Bytes bytes);

// How many pictures the animation of a PNG holds; 1 for a still one.
[[nodiscard]] std::int64_t apngFrames(Bytes bytes);

} // namespace fennick::picture
