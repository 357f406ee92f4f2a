#include "FennickCore/Imaging/Picture/Raster.h"

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

constexpr int kOpaque = 255;

VipsFailOn failOn(Damage damage) {
  return damage == Damage::refuse ? VIPS_FAIL_ON_ERROR : VIPS_FAIL_ON_NONE;
}

vips::VError undecodable() { return vips::VError("the picture cannot be decoded"); }

VipsInterpretation interpretationOf(int bands, bool wide) {
  if (bands < 3)
    return wide ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
  return wide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
}

// An image that keeps `pixels` alive for as long as anyone uses it, so that a hundred million of them are not
// copied.
VImage imageOf(std::vector<unsigned char> pixels, int width, int height, int bands, bool wide) {
  auto owned = std::make_unique<std::vector<unsigned char>>(std::move(pixels));
  VImage image = VImage::new_from_memory(owned->data(), owned->size(), width, height, bands,
                                         wide ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
  g_object_set_data_full(G_OBJECT(image.get_image()), "fennick-pixels", owned.release(), [](gpointer data) {
    const std::unique_ptr<std::vector<unsigned char>> gone(static_cast<std::vector<unsigned char> *>(data));
  });
  return image.copy(VImage::option()->set("interpretation", interpretationOf(bands, wide)));
}

VImage loaded(Bytes file, Damage damage) {
  return VImage::new_from_buffer(file.data(), file.size(), "",
                                 VImage::option()
                                     ->set("access", VIPS_ACCESS_SEQUENTIAL)
                                     ->set("fail_on", failOn(damage)));
}

VImage loadedJpeg(Bytes file, std::int64_t longEdge, Damage damage) {
  const auto header = readJpegHeader(file);
  if (!header)
    throw undecodable();
  if (!header->threeColours) // CMYK
    return loaded(file, damage);
  auto raster = decodeJpeg(file, static_cast<int>(std::min<std::int64_t>(longEdge, ImageLimits::kMaxSide)), damage);
  if (!raster)
    throw undecodable();
  return imageOf(std::move(raster->pixels), raster->width, raster->height, raster->bands, false);
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
    setColourProfile(image, std::string(textOf(bytesOf([] {
                       const std::unique_ptr<VipsBlob, decltype(&::vips_area_unref)> unused(nullptr, nullptr);
                       return std::string_view();
                     }()))));
  return image;
}

} // namespace

DecodedPicture decodePicture(Bytes file, PictureType type, std::int64_t longEdge, Damage damage) {
  DecodedPicture decoded;
  switch (type) {
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    decoded.image = loadedHeif(file, damage);
    break;
  case PictureType::jpeg:
    decoded.image = loadedJpeg(file, longEdge, damage);
    decoded.turn = storedOrientation(file, type).value_or(kUpright);
    break;
  default:
    decoded.image = loaded(file, damage);
    decoded.turn = storedOrientation(file, type).value_or(kUpright);
  }
  return decoded;
}

} // namespace fennick::picture
