#include "FennickCore/Network/QRCodeRenderer.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>

namespace fennick {
namespace {

using QRCodeRenderer::image;

class QRCodeRendererTest : public ::testing::Test {
protected:
  void SetUp() override {
    std::string pattern = (std::filesystem::temp_directory_path() / "qrcode-XXXXXX").string();
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder = pattern;
  }
  void TearDown() override { std::filesystem::remove_all(folder); }

  // What another program reads from the picture.
  std::string readBack(const Bitmap &bitmap) {
    const auto file = folder / "code.ppm";
    std::ofstream out(file, std::ios::binary);
    out << fmt::format("P6 {} {} 255\n", bitmap.width, bitmap.height);
    for (const std::uint8_t component : bitmap.rgb)
      out.put(static_cast<char>(component));
    out.close();
    return outputOf(fmt::format("zbarimg -q --raw --nodbus -Sdisable -Sqrcode.enable '{}'", file.string()));
  }

  std::filesystem::path folder;

private:
  static std::string outputOf(const std::string &command) {
    struct Close {
      void operator()(FILE *stream) const { ::pclose(stream); }
    };
    const std::unique_ptr<FILE, Close> stream(::popen(command.c_str(), "r"));
    std::string output;
    for (int c = 0; stream && (c = std::fgetc(stream.get())) != EOF;)
      output += static_cast<char>(c);
    return output;
  }
};

TEST_F(QRCodeRendererTest, AnIndependentReaderReadsTheText) {
  const std::string longText(1000, 'x');
  for (const std::string &text :
       {std::string("http://192.168.1.23:8000/?k=aB3dE5gH7j"), std::string("照片投递站"), longText}) {
    const auto code = image(text, 8, 2);
    ASSERT_TRUE(code);
    EXPECT_EQ(readBack(*code), text + "\n") << "is zbarimg installed?";
  }
}

TEST_F(QRCodeRendererTest, EveryModuleIsAnExactBlockInsideAWhiteZone) {
  constexpr std::int64_t kPixels = 3;
  constexpr std::int64_t kQuiet = 2;
  const auto modules = QRCodeRenderer::modules("tevrin");
  const auto code = image("tevrin", kPixels, kQuiet);
  ASSERT_TRUE(modules && code);
  EXPECT_EQ(modules->side, 21);
  ASSERT_EQ(code->width, (21 + 2 * kQuiet) * kPixels);
  ASSERT_EQ(code->height, code->width);
  ASSERT_EQ(code->rgb.size(), static_cast<std::size_t>(code->width * code->height * 3));
  for (std::size_t i = 0; i < code->rgb.size(); ++i) {
    const auto pixel = static_cast<std::int64_t>(i / 3);
    const std::int64_t x = pixel % code->width / kPixels - kQuiet;
    const std::int64_t y = pixel / code->width / kPixels - kQuiet;
    const bool inside = x >= 0 && y >= 0 && x < modules->side && y < modules->side;
    ASSERT_EQ(code->rgb[i], inside && modules->isDark(x, y) ? 0 : 255) << x << ", " << y;
  }
}

TEST_F(QRCodeRendererTest, TheSmallestVersionThatFitsAtLevelMIsTaken) {
  // Byte capacities of level M: version 1 14, version 2 26, version 40 2331.
  const auto side = [](std::size_t bytes) {
    const auto modules = QRCodeRenderer::modules(std::string(bytes, '1')); // digits too are stored as bytes
    return modules ? modules->side : 0;
  };
  EXPECT_EQ(side(14), 21);
  EXPECT_EQ(side(15), 25);
  EXPECT_EQ(side(26), 25);
  EXPECT_EQ(side(27), 29);
  EXPECT_EQ(side(2331), 177);
  EXPECT_EQ(side(2332), 0);
  EXPECT_EQ(side(0), 0);
}

TEST_F(QRCodeRendererTest, SidesThatMakeNoPictureGiveNothing) {
  EXPECT_FALSE(image("x", 0, 2));
  EXPECT_FALSE(image("x", -1, 2));
  EXPECT_FALSE(image("x", 8, -1));
  EXPECT_FALSE(image("x", 1'000'000, 2));
}

TEST_F(QRCodeRendererTest, AnOverflowingSideIsFatal) {
  constexpr auto kHuge = std::numeric_limits<std::int64_t>::max();
  EXPECT_DEATH(std::ignore = image("x", kHuge, 2), "");
  EXPECT_DEATH(std::ignore = image("x", 8, kHuge), "");
}

} // namespace
} // namespace fennick
