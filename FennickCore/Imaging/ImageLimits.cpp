#include "FennickCore/Imaging/ImageLimits.h"

namespace fennick::ImageLimits {

namespace {
bool isSide(std::int64_t pixels) { return pixels >= 1 && pixels <= kMaxSide; }
} // namespace

std::expected<PixelSize, Oversized> check(std::optional<std::int64_t> width,
                                          std::optional<std::int64_t> height) {
  if (!width || !height || !isSide(*width) || !isSide(*height) || *width * *height > kMaxPixels)
    return std::unexpected(Oversized{});
  return PixelSize{*width, *height};
}

} // namespace fennick::ImageLimits
