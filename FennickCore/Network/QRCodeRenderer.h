#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace fennick {

// An image of 8-bit red, green and blue, rows from the top, without padding.
struct Bitmap {
  std::int64_t width = 0; // pixels
  std::int64_t height = 0;
  std::vector<std::uint8_t> rgb; // width × height × 3 bytes
  bool operator==(const Bitmap &) const = default;
};

// The modules of a QR code, without the quiet zone.
struct QRModules {
  std::int64_t side = 0;
  std::vector<bool> dark; // rows from the top

  [[nodiscard]] bool isDark(std::int64_t x, std::int64_t y) const {
    return dark[static_cast<std::size_t>(y * side + x)];
  }
};

// QR codes of UTF-8 text, in byte mode at error-correction level M and the smallest version that fits (21 to
// 177 modules a side). Any thread.
namespace QRCodeRenderer {

// The largest side of an image in pixels: a few times the largest screen, 192 MiB.
inline constexpr std::int64_t kMaxSide = 8192;

// Returns nullopt for an empty text and for one of more than 2331 bytes, the capacity of a QR code.
[[nodiscard]] std::optional<QRModules> modules(std::string_view text);

// Draws each module as `modulePixels` × `modulePixels` pixels, black on white, with `quietModules` white
// modules around (phones need at least 2). Returns nullopt if `modules` does, for less than 1 pixel or a
// negative zone, and beyond kMaxSide. A side that overflows 64 bits ends the program.
[[nodiscard]] std::optional<Bitmap> image(std::string_view text, std::int64_t modulePixels,
                                          std::int64_t quietModules);

} // namespace QRCodeRenderer

} // namespace fennick
