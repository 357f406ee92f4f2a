#include "FennickCore/Network/QRCodeRenderer.h"

#include "tests/Support/QRReader.h"

#include <gtest/gtest.h>

#include <string>

namespace fennick {
namespace {

using QRCodeRenderer::image;

TEST(QRCodeRendererTest, IsReadByAnIndependentReader) {
  for (const std::string &text : {std::string("http://192.168.1.23:8000/?k=aB3dE5gH7j"),
                                  std::string("照片投递站"), std::string(1000, 'x')}) {
    const auto code = image(text, 8, 2);
    ASSERT_TRUE(code);
    const auto isDark = [&](std::int64_t x, std::int64_t y) {
      return code->rgb[static_cast<std::size_t>((y * code->width + x) * 3)] == 0;
    };
    EXPECT_EQ(test::readQRCode(code->width, isDark), text) << "is zbarimg installed?";
  }
}

TEST(QRCodeRendererTest, UsesTheSmallestVersionAtLevelM) {
  constexpr std::pair<std::size_t, int> kSides[] = {{0, 0}, {14, 21}, {15, 25}, {2331, 177}, {2332, 0}};
  for (const auto &[bytes, side] : kSides) { // digits too are stored as bytes
    const auto modules = QRCodeRenderer::modules(std::string(bytes, '1'));
    EXPECT_EQ(modules ? modules->side : 0, side) << bytes;
  }
}

TEST(QRCodeRendererTest, RejectsInvalidSides) {
  for (const auto &[pixels, quiet] : {std::pair(0, 2), std::pair(8, -1), std::pair(1'000'000, 2)})
    EXPECT_FALSE(image("x", pixels, quiet)) << pixels;
}

} // namespace
} // namespace fennick
