#include "FennickCore/Imaging/Picture/Orientation.h"

#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/OrientationContainers.h"

namespace fennick::picture {

namespace {

std::optional<std::int64_t> orientationOfBlock(std::string_view block) {
  const auto exif = ExifBlock::parse(block);
  return exif ? exif->orientation() : std::nullopt;
}

Turned turned(Bytes file, PictureType type, std::int64_t orientation) {
  const auto number = static_cast<std::uint16_t>(orientation);
  switch (type) {
  case PictureType::jpeg:
    return jpegWithOrientation(textOf(file), number);
  case PictureType::png:
    return pngWithOrientation(textOf(file), number);
  case PictureType::webp:
    return webpWithOrientation(textOf(file), number);
  case PictureType::tiff:
    return tiffWithOrientation(textOf(file), number);
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return heifWithOrientation(file, orientation);
  default:
    return std::unexpected(PictureFault::unsupported);
  }
}

} // namespace

std::optional<std::int64_t> storedOrientation(Bytes file, PictureType type) {
  switch (type) {
  case PictureType::jpeg:
  case PictureType::png:
  case PictureType::webp:
    return orientationOfBlock(readMetadata(file, type).exif);
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return heifOrientation(file);
  case PictureType::gif:
    return std::nullopt;
  default:
    return tiffOrientation(textOf(file)); // TIFF and raw photos
  }
}

std::expected<std::string, PictureFault> withOrientation(Bytes file, PictureType type,
                                                         std::int64_t orientation) {
  if (orientation < 1 || orientation > 8)
    return std::unexpected(PictureFault::unsupported);
  auto result = turned(file, type, orientation);
  // A damaged file may use the same bytes for two values.
  if (result && storedOrientation(bytesOf(*result), type) != orientation)
    return std::unexpected(PictureFault::undecodable);
  return result;
}

} // namespace fennick::picture
