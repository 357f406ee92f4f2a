#include "FennickCore/Imaging/Picture/Metadata.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataPng.h"
#include "FennickCore/Imaging/Picture/MetadataTiff.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::string_view kExtensionPrefix = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::size_t kExtensionHeader = 40; // a digest, the whole length, the position of this part
constexpr std::string_view kPhotoshopPrefix = "Photoshop 3.0\0"sv;
constexpr std::string_view kICCPrefix = "ICC_PROFILE\0"sv;

std::string cleanExif(std::string_view block) {
  const auto exif = ExifBlock::parse(block);
  return exif ? exif->tiff() : std::string();
}

// The first block of a kind is used; the others are only examined.
void keep(std::string &first, std::vector<std::string> &further, std::string block) {
  if (first.empty())
    first = std::move(block);
  else if (!block.empty())
    further.push_back(std::move(block));
}
void keepExif(Metadata &found, std::string_view block) {
  keep(found.exif, found.furtherExif, cleanExif(block));
}
void keepXmp(Metadata &found, std::string_view packet) {
  keep(found.xmp, found.furtherXMP, std::string(packet));
}

Metadata readJpeg(std::string_view file) {
  Metadata found;
  std::string photoshop;
  for (const JpegSegment &segment : jpegSegments(file)) {
    const std::string_view payload = segment.payload(file);
    if (segment.marker == kAPP1 && payload.starts_with(kExifPrefix))
      keepExif(found, payload);
    else if (segment.marker == kAPP1 && payload.starts_with(kXMPPrefix))
      keepXmp(found, behind(payload, kXMPPrefix.size()));
    else if (segment.marker == kAPP1 && payload.starts_with(kExtensionPrefix))
      found.extendedXMP += behind(payload, kExtensionPrefix.size() + kExtensionHeader);
    else if (segment.marker == kAPP13 && payload.starts_with(kPhotoshopPrefix))
      photoshop += behind(payload, kPhotoshopPrefix.size());
    else if (segment.marker == kAPP2 && payload.starts_with(kICCPrefix))
      found.icc += behind(payload, kICCPrefix.size() + 2);
  }
  found.iptc = iptcOfPhotoshop(photoshop);
  return found;
}

void addPngText(Metadata &found, std::string_view keyword, const std::string &text) {
  if (keyword == kPngXMP)
    keepXmp(found, text);
  else if (keyword == "Raw profile type exif"sv || keyword == "Raw profile type APP1"sv)
    keepExif(found, pngLegacyProfile(text));
  else if (keyword == "Raw profile type xmp"sv)
    keepXmp(found, pngLegacyProfile(text));
  else if (keyword == "Raw profile type iptc"sv && found.iptc.empty())
    found.iptc = iptcOfPhotoshop(pngLegacyProfile(text));
}

Metadata readPng(std::string_view file) {
  Metadata found;
  Unpacker unpack;
  const auto chunks = pngChunks(file);
  for (const Chunk &chunk : chunks)
    if (chunk.type == "eXIf"sv)
      keepExif(found, chunk.payload(file));
  for (const Chunk &chunk : chunks) {
    const std::string_view keyword = pngKeyword(chunk, file);
    if (chunk.type == "iCCP"sv && found.icc.empty())
      found.icc = unpack(behind(chunk.payload(file), keyword.size() + 2));
    else if (keyword == kPngXMP || keyword.starts_with(kPngLegacyProfile))
      addPngText(found, keyword, pngText(chunk, file, unpack));
  }
  return found;
}

bool exifHasLocation(std::string_view block) {
  const auto exif = ExifBlock::parse(block);
  return exif && exif->hasGPS();
}

Metadata readWebp(std::string_view file) {
  Metadata found;
  const auto chunks = webpChunks(file);
  for (const Chunk &chunk : chunks)
    if (chunk.type == "EXIF"sv)
      keepExif(found, chunk.payload(file));
    else if (chunk.type == "XMP "sv)
      keepXmp(found, chunk.payload(file));
  if (const Chunk *icc = findChunk(chunks, "ICCP"))
    found.icc = icc->payload(file);
  return found;
}

// The only block that can name a place is stored as text in one piece.
Metadata readGif(std::string_view file) {
  constexpr std::string_view kIdentifier = "XMP DataXMP"sv;
  const std::size_t start = file.find(kIdentifier);
  if (start == std::string_view::npos)
    return {};
  const std::string_view packet = behind(file, start + kIdentifier.size());
  return {.extendedXMP = std::string(packet.substr(0, packet.find("<?xpacket end"sv)))};
}

Metadata readHeif(Bytes file) {
  HeifBlocks blocks = heifBlocks(file);
  return {.exif = cleanExif(blocks.exif), .xmp = std::move(blocks.xmp), .icc = std::move(blocks.icc)};
}

} // namespace

Metadata readMetadata(Bytes file, PictureType type) {
  switch (type) {
  case PictureType::jpeg:
    return readJpeg(textOf(file));
  case PictureType::png:
    return readPng(textOf(file));
  case PictureType::webp:
    return readWebp(textOf(file));
  case PictureType::tiff:
    return readTiff(file);
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return readHeif(file);
  case PictureType::gif:
    return readGif(textOf(file));
  default:
    return readTiff(file); // raw photos
  }
}

bool hasLocation(const Metadata &metadata) {
  return exifHasLocation(metadata.exif) || std::ranges::any_of(metadata.furtherExif, exifHasLocation) ||
         xmpHasLocation(metadata.xmp) || std::ranges::any_of(metadata.furtherXMP, xmpHasLocation) ||
         xmpMayHaveLocation(metadata.extendedXMP) || iptcHasLocation(metadata.iptc);
}

bool hasMetadata(const Metadata &metadata) {
  return !metadata.exif.empty() || !metadata.xmp.empty() || !metadata.iptc.empty() ||
         !metadata.extendedXMP.empty();
}

} // namespace fennick::picture
