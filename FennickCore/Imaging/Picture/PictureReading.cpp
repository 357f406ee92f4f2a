#include "FennickCore/Imaging/Picture/PictureReading.h"

#include "FennickCore/Imaging/Picture/ColourCoding.h"
#include "FennickCore/Imaging/Picture/ExifDetails.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/Leftovers.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/Orientation.h"
#include "FennickCore/Imaging/Picture/PictureSniffer.h"
#include "FennickCore/Imaging/Picture/Raster.h"
#include "FennickCore/Imaging/Picture/RawPicture.h"
#include "FennickCore/Imaging/Picture/RawStructure.h"
#include "FennickCore/Imaging/Picture/ToneMapping.h"

#include <algorithm>
#include <utility>

namespace fennick::picture {

namespace {

PictureHeader readHeif(Bytes file) {
  const std::int64_t least = heifHasMovie(file) ? 2 : 1;
  const auto header = readHeifHeader(file);
  if (!header)
    return {.frames = least};
  const auto orientation = heifOrientation(file).value_or(kUpright);
  const auto [width, height] = header->upright;
  const bool lying = orientation >= 5;
  return {.width = lying ? height : width,
          .height = lying ? width : height,
          .frames = std::max(header->pictures, least)};
}

// Returns whether the image is gray, RGB or CMYK with or without transparency.
bool hasKnownChannels(const vips::VImage &image) {
  const auto isWithin = [&](int least) { return image.bands() == least || image.bands() == least + 1; };
  switch (image.interpretation()) {
  case VIPS_INTERPRETATION_B_W:
  case VIPS_INTERPRETATION_GREY16:
    return isWithin(1);
  case VIPS_INTERPRETATION_sRGB:
  case VIPS_INTERPRETATION_RGB16:
  case VIPS_INTERPRETATION_RGB:
    return isWithin(3);
  case VIPS_INTERPRETATION_CMYK:
    return isWithin(4);
  default:
    return false;
  }
}

Fidelity fidelityOf(const vips::VImage &image) {
  if (isLab(image))
    return Fidelity::colours;
  return hasUnusualSamples(image) || !hasKnownChannels(image) ? Fidelity::samples : Fidelity::faithful;
}

PictureHeader readByVips(Bytes file) {
  try {
    const auto image = vips::VImage::new_from_buffer(file.data(), file.size(), "");
    return {.width = image.width(),
            .height = image.height(),
            .frames = image.get_typeof(VIPS_META_N_PAGES) != 0 ? image.get_int(VIPS_META_N_PAGES) : 1,
            .fidelity = fidelityOf(image)};
  } catch (const vips::VError &) {
    return {};
  }
}

} // namespace

PictureHeader readHeader(Bytes file, PictureType type) {
  if (type == PictureType::jpeg) {
    const auto size = jpegSize(file);
    return size ? PictureHeader{.width = size->width, .height = size->height, .frames = jpegFrames(file)}
                : PictureHeader{};
  }
  if (isHeif(type))
    return readHeif(file);
  if (isRaw(type)) {
    const auto size = rawSize(file);
    return size ? PictureHeader{.width = size->width, .height = size->height} : PictureHeader{};
  }
  PictureHeader header = readByVips(file);
  if (type == PictureType::png)
    header.frames = apngFrames(file);
  if (type == PictureType::tiff && startsWithReducedPicture(textOf(file)))
    header.frames = std::max<std::int64_t>(header.frames, 2);
  return header;
}

PictureResult<PictureDetails> readDetails(Bytes file) {
  const auto type = sniffType(file);
  if (!type)
    return std::unexpected(PictureError{.fault = PictureFault::notAPicture, .detail = {}});
  if (*type == PictureType::tiff || isRaw(*type))
    return exifDetails(textOf(file));
  return exifDetails(readMetadata(file, *type).exif);
}

PictureResult<PictureFacts> readFacts(Bytes file, Depth depth) {
  const auto type = sniffType(file);
  if (!type)
    return std::unexpected(PictureError{.fault = PictureFault::notAPicture, .detail = {}});
  const PictureHeader header = readHeader(file, *type);
  const Metadata metadata = readMetadata(file, *type);
  Fidelity fidelity = header.fidelity;
  if (const auto colours = unusualColours(file, *type, metadata.icc))
    fidelity = colours->isHDR() ? Fidelity::dynamicRange : Fidelity::colours;
  const Leftovers others = depth == Depth::file ? leftovers(file, *type) : Leftovers();
  return PictureFacts{.type = *type,
                      .frames = header.frames,
                      .width = header.width,
                      .height = header.height,
                      .orientation = storedOrientation(file, *type),
                      .hasLocation = hasLocation(metadata) || others.location,
                      .hasMetadata = hasMetadata(metadata) || others.any,
                      .fidelity = fidelity};
}

} // namespace fennick::picture
