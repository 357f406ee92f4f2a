#include "FennickCore/Imaging/Picture/MetadataWriter.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataExif.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>

// Updates blocks and inserts them into JPEG and PNG files.
namespace fennick::picture {

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

using Written = std::expected<std::string, PictureFault>;

constexpr std::string_view kPhotoshopPrefix = "Photoshop 3.0\0"sv;
constexpr std::string_view kICCPrefix = "ICC_PROFILE\0"sv;
constexpr std::size_t kMostICCPart = 65'533 - 14;
constexpr std::size_t kMostICCParts = 255;
constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1A\n"sv;

std::string preparedExif(const std::string &exif, const MetadataChange &change) {
  auto block = ExifBlock::parse(exif);
  if (!block || (block->orientation() && !block->setOrientation(kUpright)))
    return {};
  block->setPixelDimensions(static_cast<std::uint32_t>(change.width),
                            static_cast<std::uint32_t>(change.height));
  block->removeThumbnail();
  if (change.stripLocation)
    block->removeGPS();
  // In a damaged block directories may overlap.
  const bool isSound = ExifBlock::parse(block->tiff()) && !(change.stripLocation && block->hasGPS());
  return isSound ? block->tiff() : "";
}

// A profile begins with its own length: bytes beyond it are not part of it, and a truncated profile is
// dropped.
std::string wholeProfile(const std::string &profile) {
  const auto length = readNumber(profile, 0, 4);
  return std::string(length ? slice(profile, 0, *length).value_or("") : "");
}

// Returns a segment with the block; empty if there is none or it does not fit.
std::string segmentWith(std::uint8_t marker, std::string_view prefix, std::string_view block) {
  if (block.empty())
    return {};
  return jpegSegment(marker, std::string(prefix) + std::string(block)).value_or("");
}

// Returns the same, using `smaller` for a block that does not fit.
template <typename Smaller>
std::string segmentWithLess(std::string_view prefix, const std::string &block, Smaller smaller) {
  std::string segment = segmentWith(kAPP1, prefix, block);
  if (segment.empty() && !block.empty())
    segment = segmentWith(kAPP1, prefix, smaller(block).value_or(""));
  return segment;
}

std::string profileSegments(std::string_view profile) {
  const std::size_t parts = (profile.size() + kMostICCPart - 1) / kMostICCPart;
  std::string segments;
  for (std::size_t part = 1; part <= parts && parts <= kMostICCParts; ++part) {
    const std::string numbers{static_cast<char>(part), static_cast<char>(parts)};
    segments += segmentWith(kAPP2, std::string(kICCPrefix) + numbers,
                            profile.substr((part - 1) * kMostICCPart, kMostICCPart));
  }
  return segments;
}

Written writeIntoJpeg(std::string_view file, const Metadata &metadata) {
  const auto existing = jpegSegments(file);
  if (existing.empty())
    return std::unexpected(PictureFault::unencodable);
  const bool hasHeader = existing[0].marker == kAPP0;
  std::string segments = segmentWithLess(kExifPrefix, metadata.exif, exifWithoutNotes);
  segments += segmentWithLess(kXMPPrefix, metadata.xmp, compactXmp);
  if (!metadata.iptc.empty())
    segments += segmentWith(kAPP13, kPhotoshopPrefix, photoshopOfIptc(metadata.iptc));
  if (readMetadata(bytesOf(file), PictureType::jpeg).icc.empty())
    segments += profileSegments(metadata.icc);
  const std::size_t at = hasHeader ? existing[0].end : 2;
  return std::string(file.substr(0, at)) + segments + std::string(file.substr(at));
}

Written writeIntoPng(std::string_view file, const Metadata &metadata) {
  const auto chunks = pngChunks(file);
  if (chunks.empty() || chunks[0].type != "IHDR"sv)
    return std::unexpected(PictureFault::unencodable);
  std::string added;
  if (!metadata.icc.empty() && (findChunk(chunks, "iCCP") == nullptr))
    added += pngChunk("iCCP", "ICC profile\0\0"s + deflated(metadata.icc));
  if (!metadata.exif.empty())
    added += pngChunk("eXIf", metadata.exif);
  if (!metadata.xmp.empty())
    added += pngChunk("iTXt", "XML:com.adobe.xmp\0\0\0\0\0"s + metadata.xmp);
  const std::size_t at = chunks[0].end;
  return std::string(file.substr(0, at)) + added + std::string(file.substr(at));
}

} // namespace

Metadata prepare(const Metadata &metadata, const MetadataChange &change) {
  Metadata prepared;
  prepared.icc = wholeProfile(metadata.icc);
  if (change.stripAll)
    return prepared;
  prepared.exif = preparedExif(metadata.exif, change);
  prepared.xmp =
      preparedXmp(metadata.xmp, {change.width, change.height, change.stripLocation, change.companions});
  prepared.iptc = change.stripLocation ? iptcWithoutLocation(metadata.iptc) : metadata.iptc;
  return prepared;
}

Metadata withIptcInXmp(const Metadata &metadata) {
  Metadata merged = metadata;
  if (!metadata.iptc.empty())
    merged.xmp = xmpWithIptc(metadata.xmp, metadata.iptc);
  merged.iptc.clear();
  return merged;
}

Written writeInto(Bytes bytes, const Metadata &metadata) {
  const std::string_view file = textOf(bytes);
  return file.starts_with(kPngSignature) ? writeIntoPng(file, metadata) : writeIntoJpeg(file, metadata);
}

} // namespace fennick::picture
