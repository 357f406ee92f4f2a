#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"

#include <functional>
#include <optional>
#include <string>

// Raw photos as far as they are looked into: their size, and the preview that the camera put in. Their own
// pixels are never developed. Pure functions; one thread at a time.
namespace fennick::picture {

// The size of the photo itself, before any turning.
[[nodiscard]] std::optional<PixelSize> rawSize(Bytes file);
// Calls `use` with each JPEG inside, from the largest to the smallest, until it returns true; false if it
// never does.
[[nodiscard]] bool findRawPreview(Bytes file, const std::function<bool(const std::string &)> &use);

} // namespace fennick::picture
