#include "FennickCore/Network/QRCodeRenderer.h"

#include "FennickCore/Platform/System/Log.h"

#include <qrencode.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace fennick::QRCodeRenderer {

namespace {

constexpr std::size_t kLongestText = 2331; // version 40 at level M
constexpr std::uint8_t kWhite = 255;

// (modules + 2 × quietModules) × modulePixels
std::int64_t sideInPixels(std::int64_t modules, std::int64_t modulePixels, std::int64_t quietModules) {
  std::int64_t side = 0;
  if (__builtin_mul_overflow(quietModules, std::int64_t{2}, &side) ||
      __builtin_add_overflow(side, modules, &side) || __builtin_mul_overflow(side, modulePixels, &side)) {
    log("the side of a QR code overflows");
    std::abort();
  }
  return side;
}

void fillBlack(Bitmap &bitmap, std::int64_t left, std::int64_t top, std::int64_t side) {
  for (std::int64_t y = top; y < top + side; ++y) {
    const auto first = bitmap.rgb.begin() + (y * bitmap.width + left) * 3;
    std::fill(first, first + side * 3, std::uint8_t{0});
  }
}

} // namespace

std::optional<QRModules> modules(std::string_view text) {
  if (text.empty() || text.size() > kLongestText)
    return std::nullopt;
  const std::vector<unsigned char> bytes(text.begin(), text.end());
  const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
      QRcode_encodeData(static_cast<int>(bytes.size()), bytes.data(), 0, QR_ECLEVEL_M), &QRcode_free);
  if (!code)
    return std::nullopt;
  QRModules modules{.side = code->width, .dark = {}};
  const unsigned char *module = code->data;
  for (std::int64_t left = modules.side * modules.side; left > 0; --left)
    modules.dark.push_back((*module++ & 1) != 0); // the lowest bit is the colour
  return modules;
}

std::optional<Bitmap> image(std::string_view text, std::int64_t modulePixels, std::int64_t quietModules) {
  const auto code = modules(text);
  if (!code)
    return std::nullopt;
  const std::int64_t side = sideInPixels(code->side, modulePixels, quietModules);
  if (modulePixels < 1 || quietModules < 0 || side > kMaxSide)
    return std::nullopt;
  Bitmap bitmap{.width = side, .height = side, .rgb = {}};
  bitmap.rgb.assign(static_cast<std::size_t>(side * side * 3), kWhite);
  for (std::int64_t y = 0; y < code->side; ++y)
    for (std::int64_t x = 0; x < code->side; ++x)
      if (code->isDark(x, y))
        fillBlack(bitmap, (quietModules + x) * modulePixels, (quietModules + y) * modulePixels, modulePixels);
  return bitmap;
}

} // namespace fennick::QRCodeRenderer
