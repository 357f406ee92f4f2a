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

// A picture that must not be decoded: its dimensions are unknown or exceed ImageLimits.
struct Oversized {
  bool operator==(const Oversized &) const = default;
};

// The largest dimensions of pictures that are decoded. A file of a few bytes can claim any dimensions, so
// they are checked before memory for pixels is allocated.
namespace ImageLimits {

inline constexpr std::int64_t kMaxSide = 20'000;        // pixels
inline constexpr std::int64_t kMaxPixels = 100'000'000; // width × height

// Checks the dimensions that a file states for its first picture; nullopt if it states none. Any thread.
[[nodiscard]] std::expected<PixelSize, Oversized> check(std::optional<std::int64_t> width,
                                                        std::optional<std::int64_t> height);

} // namespace ImageLimits

} // namespace fennick
