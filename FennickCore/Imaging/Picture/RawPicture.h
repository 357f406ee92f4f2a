#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"

#include <optional>
#include <string>

// Raw photos as far as they are looked into: their size, and the preview that the camera put in. Their own
// pixels are never developed. Pure functions; one thread at a time.
namespace fennick::picture {

// The size of the photo itself, before any turning.
[[nodiscard]] std::optional<PixelSize> rawSize(Bytes file);
// The largest JPEG inside, turned like the photo itself; nothing when there is none.
[[nodiscard]] std::optional<std::string> rawPreview(Bytes file);

} // namespace fennick::picture
