#include "FennickCore/Imaging/Picture/PictureReading.h"

#include "FennickCore/Imaging/Picture/ExifDetails.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/Orientation.h"
#include "FennickCore/Imaging/Picture/PictureSniffer.h"
#include "FennickCore/Imaging/Picture/Raster.h"
#include "FennickCore/Imaging/Picture/RawPicture.h"

#include <algorithm>
#include <utility>

namespace fennick::picture {

namespace {

bool isHeif(PictureType type) {
  return type == PictureType::heic || type == PictureType::heif || type == PictureType::avif;
}

PictureHeader readHeif(Bytes file) {
  const auto header = readHeifHeader(file);
  if (!header)
    return {};
  const auto orientation = heifOrientation(file).value_or(kUpright);
  const auto [width, height] = header->upright;
  const bool lying = orientation >= 5;
  return {.width = lying ? height : width, .height = lying ? width : height, .frames = header->pictures};
}

PictureHeader readByVips(Bytes file) {
  try {
    const auto image = vips::VImage::new_from_buffer(file.data(), file.size(), "");
    return {.width = image.width(),
            .height = image.height(),
            .frames = image.get_typeof(VIPS_META_N_PAGES) != 0 ? image.get_int(VIPS_META_N_PAGES) : 1};
  } catch (const vips::VError &) {
    return {};
  }
}

} // namespace

PictureHeader readHeader(Bytes file, PictureType type) {
  if (type == PictureType::jpeg) {
    const auto size = jpegSize(file);
    return size ? PictureHeader{.width = size->width, .height = size->height} : PictureHeader{};
  }
  if (isHeif(type))
    return readHeif(file);
  if (type == PictureType::dng) {
    const auto size = rawSize(file);
    return size ? PictureHeader{.width = size->width, .height = size->height} : PictureHeader{};
  }
  PictureHeader header = readByVips(file);
  if (type == PictureType::png)
    header.frames = apngFrames(file);
  return header;
}

PictureResult<PictureDetails> readDetails(Bytes file) {
  const auto type = sniffType(file);
  if (!type)
    return std::unexpected(PictureError{.fault = PictureFault::notAPicture, .detail = {}});
  if (*type == PictureType::tiff || *type == PictureType::dng)
    return exifDetails(textOf(file));
  return exifDetails(readMetadata(file, *type).exif);
}

PictureResult<PictureFacts> readFacts(Bytes file) {
  const auto type = sniffType(file);
  if (!type)
    return std::unexpected(PictureError{.fault = PictureFault::notAPicture, .detail = {}});
  const PictureHeader header = readHeader(file, *type);
  const Metadata metadata = readMetadata(file, *type);
  return PictureFacts{.type = *type,
                      .frames = header.frames,
                      .width = header.width,
                      .height = header.height,
                      .orientation = storedOrientation(file, *type),
                      .hasLocation = hasLocation(metadata),
                      .hasMetadata = hasMetadata(metadata)};
}

} // namespace fennick::picture
