#include "FennickCore/Imaging/Picture/Raster.h"

#include "FennickCore/Imaging/Picture/ColourCoding.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/Orientation.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace fennick::picture {

using vips::VImage;

namespace {

VipsFailOn failOn(Damage damage) { return damage == Damage::refuse ? VIPS_FAIL_ON_ERROR : VIPS_FAIL_ON_NONE; }

vips::VError undecodable() { return {"the picture cannot be decoded"}; }

VipsInterpretation interpretationOf(int bands, bool wide) {
  if (bands < 3)
    return wide ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
  return wide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
}

// Returns an image that keeps `pixels` alive while anyone uses it, so that a hundred million of them are not
// copied.
VImage imageOf(std::vector<unsigned char> pixels, int width, int height, int bands, bool wide) {
  auto owned = std::make_unique<std::vector<unsigned char>>(std::move(pixels));
  const VImage image = VImage::new_from_memory(owned->data(), owned->size(), width, height, bands,
                                               wide ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
  g_object_set_data_full(G_OBJECT(image.get_image()), "fennick-pixels", owned.release(), [](gpointer data) {
    const std::unique_ptr<std::vector<unsigned char>> gone(static_cast<std::vector<unsigned char> *>(data));
  });
  return image.copy(VImage::option()->set("interpretation", interpretationOf(bands, wide)));
}

VImage loaded(Bytes file, Damage damage) {
  return VImage::new_from_buffer(
      file.data(), file.size(), "",
      VImage::option()->set("access", VIPS_ACCESS_SEQUENTIAL)->set("fail_on", failOn(damage)));
}

VImage loadedJpeg(Bytes file, std::int64_t longEdge, Damage damage) {
  auto raster =
      decodeJpeg(file, static_cast<int>(std::min<std::int64_t>(longEdge, ImageLimits::kMaxSide)), damage);
  if (!raster)
    throw undecodable();
  const VImage image =
      imageOf(std::move(raster->pixels), raster->width, raster->height, raster->bands, false);
  return raster->bands < 4 ? image
                           : image.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_CMYK));
}

std::string displayP3Profile() {
  const std::unique_ptr<VipsBlob, void (*)(VipsBlob *)> blob(
      VImage::profile_load("p3"), [](VipsBlob *held) { ::vips_area_unref(VIPS_AREA(held)); });
  std::size_t size = 0;
  const auto *data = static_cast<const char *>(::vips_blob_get(blob.get(), &size));
  return {data, size};
}

VImage loadedHeif(Bytes file, Damage damage) {
  auto raster = decodeHeif(file, damage);
  if (!raster)
    throw undecodable();
  const bool wide = raster->bits > 8;
  VImage image = imageOf(std::move(raster->pixels), raster->width, raster->height, raster->bands, wide);
  if (wide)
    image = image << (16.0 - raster->bits);
  if (raster->displayP3)
    setColourProfile(image, displayP3Profile());
  return image;
}

// Byte 16 of a colour profile states its colour space.
bool describes(const std::string &profile, int bands) {
  return profile.size() > 128 && profile.compare(16, 4, bands < 3 ? "GRAY" : "RGB ") == 0;
}

VImage inColours(const VImage &image) {
  switch (image.interpretation()) {
  case VIPS_INTERPRETATION_B_W:
  case VIPS_INTERPRETATION_GREY16:
  case VIPS_INTERPRETATION_sRGB:
  case VIPS_INTERPRETATION_RGB16:
  case VIPS_INTERPRETATION_RGB:
    return image;
  case VIPS_INTERPRETATION_CMYK: {
    VImage converted = image.icc_transform("srgb", VImage::option()
                                                       ->set("embedded", true)
                                                       ->set("input_profile", "cmyk")
                                                       ->set("intent", VIPS_INTENT_PERCEPTUAL));
    setColourProfile(converted, {});
    return converted;
  }
  default: {
    VImage converted = image.colourspace(VIPS_INTERPRETATION_sRGB);
    setColourProfile(converted, {});
    return converted;
  }
  }
}

bool isWide(const VImage &image) { return image.format() == VIPS_FORMAT_USHORT; }

} // namespace

DecodedPicture decodePicture(Bytes file, PictureType type, std::int64_t longEdge, Damage damage) {
  if (isHeif(type)) {
    DecodedPicture decoded{.image = loadedHeif(file, damage)};
    if (const std::string profile = heifBlocks(file).icc; !profile.empty())
      setColourProfile(decoded.image, profile);
    return decoded;
  }
  DecodedPicture decoded{.image = type == PictureType::jpeg ? loadedJpeg(file, longEdge, damage)
                                                            : loaded(file, damage),
                         .turn = storedOrientation(file, type).value_or(kUpright)};
  if (type == PictureType::jpeg)
    setColourProfile(decoded.image, readMetadata(file, type).icc);
  if (const auto stated = type == PictureType::png ? statedColours(file, type) : std::nullopt;
      stated && stated->primaries == ColourCoding::kDisplayP3 && stated->isOrdinary())
    setColourProfile(decoded.image, displayP3Profile());
  return decoded;
}

VImage upright(const VImage &image, std::int64_t turn) {
  if (turn < 2 || turn > 8)
    return image;
  VImage marked = image.copy();
  marked.set("orientation", static_cast<int>(turn));
  return marked.autorot();
}

VImage reduced(const VImage &image, std::int64_t longEdge) {
  const int stored = std::max(image.width(), image.height());
  if (stored <= longEdge)
    return image.copy_memory();
  const double scale = static_cast<double>(longEdge) / stored;
  if (!image.has_alpha())
    return image.resize(scale).copy_memory();
  return image.premultiply().resize(scale).unpremultiply().cast(image.format()).copy_memory();
}

VImage inOrdinaryColours(const VImage &image) {
  VImage result = inColours(image);
  if (result.format() != VIPS_FORMAT_UCHAR && !isWide(result))
    result = result.cast(VIPS_FORMAT_UCHAR);
  const int colours = result.bands() < 3 ? 1 : 3;
  const int wanted = result.bands() == colours + 1 && result.has_alpha() ? colours + 1 : colours;
  if (result.bands() > wanted)
    result = result.extract_band(0, VImage::option()->set("n", wanted));
  result = result.copy(VImage::option()->set("interpretation", interpretationOf(colours, isWide(result))));
  if (!describes(colourProfile(result), colours))
    setColourProfile(result, {});
  return result;
}

VImage in8Bits(const VImage &image) {
  if (!isWide(image))
    return image;
  return image.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", true))
      .copy(VImage::option()->set("interpretation", interpretationOf(image.bands(), false)));
}

VImage inSRGB(const VImage &image) {
  VImage result = image;
  if (!colourProfile(image).empty()) {
    try {
      result = image
                   .icc_transform("srgb", VImage::option()
                                              ->set("embedded", true)
                                              ->set("intent", VIPS_INTENT_RELATIVE)
                                              ->set("depth", isWide(image) ? 16 : 8))
                   .copy_memory();
    } catch (const vips::VError &) {
      result = image; // a damaged profile: colours stay unchanged
    }
    setColourProfile(result, {});
  }
  return result.bands() < 3
             ? result.colourspace(isWide(result) ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB)
             : result;
}

VImage withoutTransparency(const VImage &image) {
  if (!image.has_alpha())
    return image;
  const double white = isWide(image) ? 65535 : 255;
  return image
      .flatten(VImage::option()->set("background", std::vector<double>{white})->set("max_alpha", white))
      .cast(image.format());
}

VImage forScreen(const VImage &image) {
  return in8Bits(withoutTransparency(inSRGB(inOrdinaryColours(image))));
}

std::string colourProfile(const VImage &image) {
  if (image.get_typeof(VIPS_META_ICC_NAME) == 0)
    return {};
  std::size_t size = 0;
  const auto *data = static_cast<const char *>(image.get_blob(VIPS_META_ICC_NAME, &size));
  return {data, size};
}

void setColourProfile(VImage &image, const std::string &profile) {
  image = image.copy();
  if (profile.empty())
    image.remove(VIPS_META_ICC_NAME);
  else
    ::vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
}

} // namespace fennick::picture
