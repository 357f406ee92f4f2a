// Parses an EXIF block, reads all values and makes all edits. Changes must be readable afterwards, and
// nothing else may grow.
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/ExifDetails.h"
#include "FennickCore/Support/Text.h"
#include "fuzz/Property.h"

using namespace fennick::picture;
using fennick::fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view text = fennick::fuzz::textOf(data, size);
  const auto parsed = ExifBlock::parse(text);
  if (!parsed)
    return 0;
  require(text.ends_with(parsed->tiff()));
  (void)parsed->hasExif();
  (void)parsed->hasTIFF();
  const auto details = exifDetails(parsed->tiff());
  for (const auto &line : {details.camera, details.lens, details.taken, details.offset, details.exposure})
    require(line == fennick::oneLine(line, fennick::kMostDetailText));

  ExifBlock turned = *parsed;
  const bool isTurned = turned.setOrientation(6);
  require(isTurned ? turned.orientation() == 6 : turned.tiff() == parsed->tiff());
  if (isTurned && parsed->orientation())
    require(turned.tiff().size() == parsed->tiff().size());

  ExifBlock cleaned = *parsed;
  cleaned.setPixelDimensions(640, 480);
  cleaned.removeGPS();
  require(cleaned.tiff().size() == parsed->tiff().size());
  cleaned.removeThumbnail();
  require(cleaned.tiff().size() <= parsed->tiff().size());
  return 0;
}
