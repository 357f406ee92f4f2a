#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace fennick::picture {

// Makes a complete file of at most `edge` pixels on the longer side; returns an empty text if that fails.
using EncodeAt = std::function<std::string(std::int64_t edge, double quality)>;
// Returns how long the request has been running.
using Elapsed = std::function<Seconds()>;

inline constexpr int kMostEncodes = 14;

// Searches the best file within the request's `maxBytes`: first with a lower quality, then with fewer pixels,
// from `fullEdge` on. Returns the smallest file if none of `mostEncodes` is small enough or `searchTime` runs
// out, and nullopt if an encoding fails. Any thread.
[[nodiscard]] std::optional<Rendering> searchSize(std::int64_t fullEdge, const RenderRequest &request,
                                                  const EncodeAt &encodeAt, const Elapsed &elapsed,
                                                  int mostEncodes = kMostEncodes);

} // namespace fennick::picture
