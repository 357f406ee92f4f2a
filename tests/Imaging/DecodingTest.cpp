// Real pictures in the real sandboxed process.

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/Raster.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

using Colour = std::vector<double>;
const Colour kRed{200, 40, 40};
const Colour kGreen{40, 160, 40};
const Colour kBlue{40, 40, 200};
const Colour kGray{128, 128, 128};
constexpr double kTolerance = 14; // the error of lossy encoding in an even field

// Red, green / blue, gray: distinguishes all orientations.
VImage quarters(int width, int height) {
  const auto field = [&](const Colour &colour) {
    return VImage::black(width / 2, height / 2).new_from_image(colour).cast(VIPS_FORMAT_UCHAR);
  };
  return VImage::arrayjoin({field(kRed), field(kGreen), field(kBlue), field(kGray)},
                           VImage::option()->set("across", 2))
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// Returns the pixels to store so that a viewer sees `seen` after applying `orientation`.
VImage storedFor(int orientation, const VImage &seen) {
  constexpr std::array kTurns{VIPS_ANGLE_D0,  VIPS_ANGLE_D0,   VIPS_ANGLE_D180, VIPS_ANGLE_D180,
                              VIPS_ANGLE_D90, VIPS_ANGLE_D270, VIPS_ANGLE_D270, VIPS_ANGLE_D90};
  const bool isMirrored = orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
  const VImage turned = seen.rot(kTurns.at(static_cast<std::size_t>(orientation - 1)));
  return isMirrored ? turned.fliphor() : turned;
}

void expectColour(const VImage &image, int x, int y, const Colour &wanted, const std::string &where) {
  const auto colour = image.getpoint(x, y);
  for (std::size_t band = 0; band < wanted.size(); ++band)
    EXPECT_NEAR(colour.at(band), wanted.at(band), kTolerance)
        << where << " at " << x << "," << y << " band " << band;
}

void expectQuarters(const VImage &image, const std::string &where) {
  const int w = image.width();
  const int h = image.height();
  expectColour(image, w / 4, h / 4, kRed, where);
  expectColour(image, 3 * w / 4, h / 4, kGreen, where);
  expectColour(image, w / 4, 3 * h / 4, kBlue, where);
  expectColour(image, 3 * w / 4, 3 * h / 4, kGray, where);
}

// Decodes the bytes directly with the libraries, as a viewer would.
VImage seen(const std::string &bytes) {
  if (bytes.compare(4, 4, "ftyp") == 0) {
    const auto raster = picture::decodeHeif(picture::bytesOf(bytes), picture::Damage::refuse);
    return VImage(vips_image_new_from_memory_copy(raster->pixels.data(), raster->pixels.size(), raster->width,
                                                  raster->height, raster->bands, VIPS_FORMAT_UCHAR));
  }
  return VImage::new_from_buffer(bytes, "").autorot().copy_memory();
}

class DecodingTest : public testing::Test {
protected:
  static void SetUpTestSuite() { ASSERT_EQ(vips_init("tests"), 0); }
  // Saves with libvips in the format of the name's extension.
  fs::path save(const std::string &name, const VImage &image, int orientation = 1) {
    VImage marked = image.copy();
    if (orientation != 1)
      marked.set("orientation", orientation);
    marked.write_to_file((folder / name).c_str());
    return folder / name;
  }
  Rendering rendered(const fs::path &file, const RenderRequest &request) {
    auto rendering = pool.render(file, request, Seconds(90));
    EXPECT_TRUE(rendering) << file << ": " << rendering.error().detail;
    return rendering.value_or(Rendering{});
  }

  test::TemporaryFolder folder;
  DecoderPool pool{{.program = IMAGING_PROGRAM}};
};

TEST_F(DecodingTest, MakesEveryOrientationUprightInEveryFormatAndSize) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const auto file = save("o.jpg", storedFor(orientation, quarters(240, 160)), orientation);
    const auto where = "orientation " + std::to_string(orientation);
    const auto facts = pool.facts(file).value();
    EXPECT_EQ(facts.width, orientation < 5 ? 240 : 160) << where;
    const auto small = seen(pool.thumbnail(file, 120, 0.72).value());
    EXPECT_EQ(small.width(), 120);
    expectQuarters(small, "thumbnail of " + where);
    for (const auto output : {PictureType::jpeg, PictureType::png, PictureType::heic})
      for (const int edge : {240, 90}) {
        const auto picture = rendered(file, {.output = output, .longEdge = edge});
        EXPECT_EQ(picture.longEdge, edge);
        const auto image = seen(picture.bytes);
        EXPECT_EQ(image.width(), edge) << where;
        expectQuarters(image, where + " as " + std::string(preferredExtension(output)));
      }
  }
}

TEST_F(DecodingTest, ChangesOnlyTheOrientationWhenRotating) {
  const auto original = quarters(64, 32);
  for (const char *name : {"t.jpg", "t.png", "t.tif", "t.webp", "t.heic"}) {
    auto file = folder / name;
    if (std::string(name) == "t.heic")
      folder.write(name,
                   rendered(save("t.png", original), {.output = PictureType::heic, .longEdge = 64}).bytes);
    else
      save(name, original);
    const auto turned = pool.withOrientation(file, 6);
    ASSERT_TRUE(turned) << name << turned.error().detail;
    folder.write(name, *turned);
    EXPECT_EQ(pool.facts(file)->orientation, 6) << name;
    const auto image = seen(pool.thumbnail(file, 64, 0.9).value());
    EXPECT_EQ(image.height(), 64) << name;
    expectColour(image, 24, 16, kRed, name);
    expectColour(image, 8, 16, kBlue, name);
  }
  EXPECT_EQ(pool.withOrientation(save("t.gif", original), 6).error().fault, PictureFault::unsupported);
}

TEST_F(DecodingTest, ReadsDetailsInTheSandbox) {
  VImage picture = quarters(64, 32);
  picture.set("exif-ifd0-Model", "Model 7 (Model 7, ASCII, 8 components, 8 bytes)");
  for (const char *name : {"d.jpg", "d.webp"}) {
    const auto details = pool.details(save(name, picture));
    ASSERT_TRUE(details) << name << details.error().detail;
    EXPECT_EQ(details->camera, "Model 7") << name;
  }
  EXPECT_EQ(pool.details(save("d.png", quarters(8, 8))), PictureDetails());
  EXPECT_EQ(pool.details(folder.write("d.mov", "no picture")).error().fault, PictureFault::notAPicture);
}

TEST_F(DecodingTest, KeepsTransparencyOrMakesItWhite) {
  const auto clear = quarters(100, 60).bandjoin(0.0).cast(VIPS_FORMAT_UCHAR);
  for (const char *name : {"a.png", "a.webp", "a.tif"}) {
    const auto file = save(name, clear);
    expectColour(seen(rendered(file, {.output = PictureType::jpeg, .longEdge = 50}).bytes), 9, 9,
                 {255, 255, 255}, name);
    expectColour(seen(pool.thumbnail(file, 50, 0.72).value()), 9, 9, {255, 255, 255}, name);
    for (const auto output : {PictureType::png, PictureType::heic}) {
      const auto image = seen(rendered(file, {.output = output, .longEdge = 100}).bytes);
      ASSERT_EQ(image.bands(), 4) << name;
      EXPECT_LT(image.getpoint(9, 9).at(3), 5) << name;
    }
  }
}

TEST_F(DecodingTest, ConvertsDeepCMYKAndGrayPictures) {
  const auto deep = (quarters(100, 60).cast(VIPS_FORMAT_USHORT) * 257)
                        .cast(VIPS_FORMAT_USHORT)
                        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16));
  for (const char *name : {"deep.png", "deep.tif"}) {
    const auto file = save(name, deep);
    expectQuarters(seen(pool.thumbnail(file, 50, 0.9).value()), name);
    for (const auto output : {PictureType::jpeg, PictureType::heic})
      expectQuarters(seen(rendered(file, {.output = output, .longEdge = 80}).bytes), name);
    EXPECT_EQ(seen(rendered(file, {.output = PictureType::png, .longEdge = 80}).bytes).format(),
              VIPS_FORMAT_USHORT);
  }
  const auto ink = quarters(100, 60).icc_export(VImage::option()->set("output_profile", "cmyk"));
  for (const char *name : {"ink.jpg", "ink.tif"}) {
    const auto file = save(name, ink);
    const auto image =
        seen(rendered(file, {.output = PictureType::jpeg, .longEdge = 100, .quality = 0.95}).bytes);
    EXPECT_EQ(image.bands(), 3);
    EXPECT_GT(image.getpoint(25, 15).at(0), image.getpoint(25, 15).at(1) + 80) << name << ": red is red";
    EXPECT_GT(seen(pool.thumbnail(file, 50, 0.9).value()).getpoint(12, 22).at(2), 120)
        << name << ": blue is blue";
  }
  const auto gray = save("gray.jpg", quarters(100, 60).colourspace(VIPS_INTERPRETATION_B_W));
  for (const auto output : {PictureType::jpeg, PictureType::png, PictureType::heic})
    expectColour(seen(rendered(gray, {.output = output, .longEdge = 100}).bytes), 75, 45, {128}, "gray");
  expectColour(seen(pool.thumbnail(gray, 50, 0.9).value()), 37, 22, {128}, "gray");
}

TEST_F(DecodingTest, KeepsAWideGamutInPhotosAndConvertsItInThumbnails) {
  auto wide = quarters(100, 60).icc_transform("p3", VImage::option()->set("input_profile", "srgb"));
  // Phones name theirs "Display P3 Gamut with sRGB Transfer".
  std::string profile = picture::colourProfile(wide);
  const auto description = profile.find("sP3C");
  ASSERT_NE(description, std::string::npos);
  picture::setColourProfile(wide, profile.replace(description, 4, "sRGB"));
  for (const char *name : {"p3.jpg", "p3.png"}) {
    const auto file = save(name, wide);
    for (const auto output : {PictureType::jpeg, PictureType::png, PictureType::heic}) {
      const auto bytes = rendered(file, {.output = output, .longEdge = 100, .stripAllMetadata = true}).bytes;
      EXPECT_EQ(picture::readMetadata(picture::bytesOf(bytes), output).icc, picture::colourProfile(wide))
          << name;
      expectColour(seen(bytes), 25, 15, wide.getpoint(25, 15), name);
    }
    const auto thumbnail = pool.thumbnail(file, 50, 0.9).value();
    EXPECT_EQ(picture::readMetadata(picture::bytesOf(thumbnail), PictureType::jpeg), picture::Metadata{});
    expectQuarters(seen(thumbnail), name);
  }
}

TEST_F(DecodingTest, MeetsTheSizeLimitOrUsesTheSmallestInTime) {
  // Noise does not compress well.
  const auto noise = VImage::gaussnoise(1400, 900, VImage::option()->set("mean", 128)->set("sigma", 60));
  const auto file = save("noise.png", noise.cast(VIPS_FORMAT_UCHAR));
  RenderRequest request{.output = PictureType::jpeg, .longEdge = 1400};
  request.maxBytes = static_cast<std::int64_t>(rendered(file, request).bytes.size()) / 5;
  const auto smaller = rendered(file, request);
  EXPECT_TRUE(smaller.withinMaxBytes);
  EXPECT_LE(static_cast<std::int64_t>(smaller.bytes.size()), *request.maxBytes);
  EXPECT_LT(smaller.longEdge, 1400);
  request.searchTime = Seconds(0);
  const auto first = rendered(file, request);
  EXPECT_FALSE(first.withinMaxBytes);
  EXPECT_EQ(seen(first.bytes).width(), 1400);
}

} // namespace
} // namespace fennick
