#pragma once

#include <cstdint>
#include <expected>
#include <optional>

namespace fennick {

struct PixelSize {
  std::int64_t width = 0;
  std::int64_t height = 0;
  bool operator==(const PixelSize &) const = default;
};

// A picture that is not decoded: its dimensions are unknown or beyond ImageLimits.
struct Oversized {
  bool operator==(const Oversized &) const = default;
};

// The dimensions within which pictures are decoded at all. A file of a few bytes can claim any dimensions, so
// they are checked before memory is taken for pixels.
namespace ImageLimits {

inline constexpr std::int64_t kMaxSide = 20'000;        // pixels
inline constexpr std::int64_t kMaxPixels = 100'000'000; // width × height

// `width` and `height` as the first picture of a file states them; absent when it does not. Any thread.
[[nodiscard]] std::expected<PixelSize, Oversized> check(std::optional<std::int64_t> width,
                                                        std::optional<std::int64_t> height);

} // namespace ImageLimits

} // namespace fennick
