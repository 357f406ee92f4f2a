#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"

#include <functional>
#include <optional>
#include <string>

// The size of raw photos and the previews in them. Their own pixels are never developed. Pure functions; one
// thread at a time.
namespace fennick::picture {

// Returns the size of the photo itself, before any rotation.
[[nodiscard]] std::optional<PixelSize> rawSize(Bytes file);
// Calls `use` with each JPEG inside, from the largest to the smallest, until it returns true. Returns false
// if it never does.
[[nodiscard]] bool findRawPreview(Bytes file, const std::function<bool(const std::string &)> &use);

} // namespace fennick::picture
