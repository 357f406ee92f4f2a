// Reads and cleans the metadata of a picture file, writes it into other files and reads it again.
#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/JpegCompanions.h"
#include "FennickCore/Imaging/Picture/Leftovers.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataProof.h"
#include "FennickCore/Imaging/Picture/MetadataWriter.h"
#include "FennickCore/Imaging/Picture/Orientation.h"
#include "FennickCore/Imaging/Picture/PictureSniffer.h"
#include "fuzz/Property.h"

#include <algorithm>

using namespace fennick;
using namespace fennick::picture;
using fennick::fuzz::require;

namespace {

// A JPEG with only a table, before which blocks can be inserted.
const std::string kJpeg("\xFF\xD8\xFF\xDB\x00\x02\xFF\xD9", 8);

std::string smallPng() {
  using namespace std::string_literals;
  return "\x89PNG\r\n\x1A\n"s + pngChunk("IHDR", "\0\0\0\1\0\0\0\1\x8\0\0\0\0"s) +
         pngChunk("IDAT", deflated("\0\0"s)) + pngChunk("IEND", "");
}

void requireRoundTrip(const std::string &file, PictureType type, const Metadata &metadata) {
  const auto written = writeInto(bytesOf(file), metadata);
  require(written.has_value());
  if (std::max({metadata.exif.size(), metadata.xmp.size(), metadata.iptc.size()}) > 65'000)
    return; // it may be left out
  require(readMetadata(bytesOf(*written), type) == metadata);
  (void)proveRemoved(bytesOf(*written), type, Removal::location);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const auto file = std::as_bytes(std::span(data, size));
  const auto type = sniffType(file);
  if (!type)
    return 0;
  (void)apngFrames(file);
  for (const std::int64_t orientation : {1, 6, 7})
    if (const auto turned = withOrientation(file, *type, orientation))
      require(storedOrientation(bytesOf(*turned), *type) == orientation);

  (void)leftovers(file, *type);
  (void)jpegCompanions(textOf(file));
  const Metadata found = readMetadata(file, *type);
  const Metadata cleaned =
      prepare(found, {.width = 640, .height = 480, .stripLocation = true, .stripAll = false});
  require(!hasLocation(cleaned));
  require(
      !hasMetadata(prepare(found, {.width = 640, .height = 480, .stripLocation = false, .stripAll = true})));
  requireRoundTrip(kJpeg, PictureType::jpeg, cleaned);
  requireRoundTrip(smallPng(), PictureType::png, withIptcInXmp(cleaned));
  return 0;
}
