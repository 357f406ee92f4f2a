#include "FennickCore/Imaging/Picture/Thumbnail.h"

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/ColourCoding.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/Orientation.h"
#include "FennickCore/Imaging/Picture/PictureReading.h"
#include "FennickCore/Imaging/Picture/PictureSniffer.h"
#include "FennickCore/Imaging/Picture/Raster.h"
#include "FennickCore/Imaging/Picture/RawPicture.h"
#include "FennickCore/Imaging/Picture/RawStructure.h"
#include "FennickCore/Imaging/Picture/ToneMapping.h"

#include <libyuv.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace fennick::picture {

namespace {

std::unexpected<PictureError> undecodable(std::string detail) {
  return std::unexpected(PictureError{.fault = PictureFault::undecodable, .detail = std::move(detail)});
}

struct Size {
  int width = 0;
  int height = 0;
};

// Fits the size within `longEdge` in proportion, without enlarging it.
Size within(Size size, std::int64_t longEdge) {
  const int longer = std::max(size.width, size.height);
  if (longer <= longEdge)
    return size;
  const double scale = static_cast<double>(longEdge) / longer;
  const auto side = [&](int pixels) { return std::max(1, static_cast<int>(std::lround(pixels * scale))); };
  return {.width = side(size.width), .height = side(size.height)};
}

Plane scaled(const Plane &plane, Size size) {
  Plane result{.width = size.width, .height = size.height, .pixels = {}};
  result.pixels.resize(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
  libyuv::ScalePlane(plane.pixels.data(), plane.width, plane.width, plane.height, result.pixels.data(),
                     size.width, size.width, size.height, libyuv::kFilterBox);
  return result;
}

Plane mirrored(const Plane &plane) {
  Plane result = plane;
  libyuv::MirrorPlane(plane.pixels.data(), plane.width, result.pixels.data(), plane.width, plane.width,
                      plane.height);
  return result;
}

Plane rotated(const Plane &plane, libyuv::RotationMode clockwise) {
  const bool quarter = clockwise == libyuv::kRotate90 || clockwise == libyuv::kRotate270;
  Plane result{.width = quarter ? plane.height : plane.width,
               .height = quarter ? plane.width : plane.height,
               .pixels = {}};
  result.pixels.resize(plane.pixels.size());
  libyuv::RotatePlane(plane.pixels.data(), plane.width, result.pixels.data(), result.width, plane.width,
                      plane.height, clockwise);
  return result;
}

// Orientations are mirrorings followed by clockwise rotations.
Plane uprightPlane(Plane plane, std::int64_t orientation) {
  switch (orientation) {
  case 2:
    return mirrored(plane);
  case 3:
    return rotated(plane, libyuv::kRotate180);
  case 4:
    return rotated(mirrored(plane), libyuv::kRotate180);
  case 5:
    return rotated(mirrored(plane), libyuv::kRotate270);
  case 6:
    return rotated(plane, libyuv::kRotate90);
  case 7:
    return rotated(mirrored(plane), libyuv::kRotate90);
  case 8:
    return rotated(plane, libyuv::kRotate270);
  default:
    return plane;
  }
}

// Returns the first number of an XYZ tag of a colour profile, such as the X of its red.
std::optional<double> firstOf(std::string_view profile, std::uint32_t tag) {
  constexpr std::uint64_t kMostTags = 100;
  const auto tags = std::min(readNumber(profile, 128, 4).value_or(0), kMostTags);
  for (std::uint64_t i = 0; i < tags; ++i)
    if (const auto at = 132 + 12 * i; readNumber(profile, at, 4) == tag)
      if (const auto place = readNumber(profile, at + 4, 4))
        if (const auto value = readNumber(profile, *place + 8, 4))
          return static_cast<double>(static_cast<std::int32_t>(*value)) / 65536;
  return std::nullopt;
}

// Returns whether colours need no conversion for display: there is no profile, or one with sRGB's red and
// green. Names are unreliable: "Display P3 Gamut with sRGB Transfer".
bool isSRGB(const std::string &profile) {
  constexpr double kRed = 0.4361;
  constexpr double kGreen = 0.3851;
  constexpr double kTolerance = 0.003;
  constexpr std::uint32_t kRedTag = 0x7258595A;   // "rXYZ"
  constexpr std::uint32_t kGreenTag = 0x6758595A; // "gXYZ"
  return profile.empty() || (std::abs(firstOf(profile, kRedTag).value_or(0) - kRed) < kTolerance &&
                             std::abs(firstOf(profile, kGreenTag).value_or(0) - kGreen) < kTolerance);
}

// RGB or RGBA; `pixels` outlives the image.
vips::VImage imageOf(std::vector<unsigned char> &pixels, int width, int height, int bands) {
  return vips::VImage::new_from_memory(pixels.data(), pixels.size(), width, height, bands, VIPS_FORMAT_UCHAR)
      .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

std::string encoded(const vips::VImage &image, double quality) {
  const auto pixels = forScreen(image).copy_memory();
  return encodeJpeg(static_cast<const unsigned char *>(pixels.data()), pixels.width(), pixels.height(),
                    pixels.bands(), quality);
}

// Returns the small picture with its colours converted from `profile` to sRGB.
PlanarPicture inSRGBPlanes(const PlanarPicture &picture, const std::string &profile) {
  const Plane &luma = picture.planes[0];
  const auto pixels = static_cast<std::size_t>(luma.width) * static_cast<std::size_t>(luma.height);
  std::vector<unsigned char> colours(pixels * 3);
  libyuv::J420ToRAW(luma.pixels.data(), luma.width, picture.planes[1].pixels.data(), picture.planes[1].width,
                    picture.planes[2].pixels.data(), picture.planes[2].width, colours.data(), luma.width * 3,
                    luma.width, luma.height);
  auto image = imageOf(colours, luma.width, luma.height, 3);
  setColourProfile(image, profile);
  const auto converted = inSRGB(inOrdinaryColours(image)).copy_memory();
  PlanarPicture result = picture;
  libyuv::RAWToJ420(static_cast<const unsigned char *>(converted.data()), luma.width * 3,
                    result.planes[0].pixels.data(), luma.width, result.planes[1].pixels.data(),
                    result.planes[1].width, result.planes[2].pixels.data(), result.planes[2].width,
                    luma.width, luma.height);
  return result;
}

// The fast path for almost all pictures: keeps the file's own planes unless the colours are not sRGB. Returns
// an empty text if this JPEG needs the slow path.
std::string jpegThumbnail(Bytes file, std::int64_t turn, std::int64_t maxPixel, double quality) {
  auto picture = decodeJpegPlanes(file, static_cast<int>(maxPixel));
  if (!picture)
    return {};
  const Size small = within({picture->planes[0].width, picture->planes[0].height}, maxPixel);
  const Size colours{(small.width + 1) / 2, (small.height + 1) / 2};
  for (std::size_t i = 0; i < (picture->gray ? 1U : 3U); ++i) {
    Plane &plane = picture->planes.at(i);
    plane = uprightPlane(scaled(plane, i == 0 ? small : colours), turn);
  }
  const std::string profile = readMetadata(file, PictureType::jpeg).icc;
  if (!picture->gray && !isSRGB(profile))
    *picture = inSRGBPlanes(*picture, profile);
  return encodeJpegPlanes(*picture, quality);
}

// The fast path for HEIC and AVIF: reduces the size first. Returns an empty text if this picture needs the
// slow path.
std::string heifThumbnail(Bytes file, std::int64_t maxPixel, double quality) {
  auto raster = decodeHeifReduced(file, maxPixel, Damage::tolerate);
  if (!raster)
    return {};
  auto image = reduced(imageOf(raster->pixels, raster->width, raster->height, raster->bands), maxPixel);
  const std::string profile = heifBlocks(file).icc;
  if (profile.empty() && raster->displayP3)
    image = image.icc_transform(
        "srgb", vips::VImage::option()->set("input_profile", "p3")->set("intent", VIPS_INTENT_RELATIVE));
  else
    setColourProfile(image, profile);
  return encoded(image, quality);
}

// `colours`: the meaning of the samples, if it is unusual.
std::string anyThumbnail(Bytes file, PictureType type, const std::optional<ColourCoding> &colours,
                         std::int64_t turn, std::int64_t maxPixel, double quality) {
  const DecodedPicture decoded = decodePicture(file, type, maxPixel, Damage::tolerate);
  vips::VImage image = reduced(decoded.image, maxPixel);
  if (hasUnusualSamples(image))
    image = withOrdinarySamples(image);
  else if (colours)
    image = toneMapped(image, *colours);
  return encoded(upright(image, isHeif(type) ? decoded.turn : turn), quality);
}

// `turn` is the orientation to apply to `file`, a picture of `type`.
PictureResult<std::string> thumbnailOf(Bytes file, PictureType type, std::int64_t turn, std::int64_t maxPixel,
                                       double quality) {
  const auto header = readHeader(file, type);
  if (!ImageLimits::check(header.width, header.height))
    return undecodable("oversized");
  const auto colours = unusualColours(file, type, readMetadata(file, type).icc);
  std::string thumbnail;
  if (type == PictureType::jpeg && !colours)
    thumbnail = jpegThumbnail(file, turn, maxPixel, quality);
  else if (isHeif(type) && !colours)
    thumbnail = heifThumbnail(file, maxPixel, quality);
  if (thumbnail.empty())
    thumbnail = anyThumbnail(file, type, colours, turn, maxPixel, quality);
  if (thumbnail.empty())
    return undecodable("the thumbnail cannot be encoded");
  return thumbnail;
}

// Uses the largest preview that can be decoded, or else the small picture at the beginning of the file.
// Previews have the photo's orientation `turn` unless they state another.
PictureResult<std::string> rawThumbnail(Bytes file, std::int64_t turn, std::int64_t maxPixel,
                                        double quality) {
  PictureResult<std::string> thumbnail = undecodable("a raw photo without a preview");
  const auto decode = [&](const std::string &preview) {
    const auto own = storedOrientation(bytesOf(preview), PictureType::jpeg);
    thumbnail = thumbnailOf(bytesOf(preview), PictureType::jpeg, own.value_or(turn), maxPixel, quality);
    return thumbnail.has_value();
  };
  if (!findRawPreview(file, decode) && startsWithPicture(textOf(file)))
    return thumbnailOf(file, PictureType::tiff, turn, maxPixel, quality);
  return thumbnail;
}

} // namespace

PictureResult<std::string> makeThumbnail(Bytes file, std::int64_t maxPixel, double quality) {
  const auto type = sniffType(file);
  if (!type)
    return std::unexpected(PictureError{.fault = PictureFault::notAPicture, .detail = {}});
  if (maxPixel < 1 || maxPixel > ImageLimits::kMaxSide)
    return undecodable("no such thumbnail size");
  const auto turn = storedOrientation(file, *type).value_or(kUpright);
  try {
    return isRaw(*type) ? rawThumbnail(file, turn, maxPixel, quality)
                        : thumbnailOf(file, *type, turn, maxPixel, quality);
  } catch (const vips::VError &error) {
    return undecodable(error.what());
  } catch (const std::bad_alloc &) {
    return undecodable("out of memory");
  }
}

} // namespace fennick::picture
