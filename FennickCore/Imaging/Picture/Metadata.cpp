#include "FennickCore/Imaging/Picture/Metadata.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataTiff.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::string_view kExtensionPrefix = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::size_t kExtensionHeader = 40; // a digest, the whole length, this part's place
constexpr std::string_view kPhotoshopPrefix = "Photoshop 3.0\0"sv;
constexpr std::string_view kICCPrefix = "ICC_PROFILE\0"sv;
constexpr std::string_view kPngXMP = "XML:com.adobe.xmp"sv;

constexpr std::size_t kMostXMP = 16UZ * 1'024 * 1'024;
constexpr std::size_t kMostICC = 4UZ * 1'024 * 1'024;

std::string_view behind(std::string_view text, std::size_t count) {
  return text.substr(std::min(count, text.size()));
}

std::string cleanExif(std::string_view block) {
  const auto exif = ExifBlock::parse(block);
  return exif ? exif->tiff() : std::string();
}

Metadata readJpeg(std::string_view file) {
  Metadata found;
  std::string photoshop;
  for (const JpegSegment &segment : jpegSegments(file)) {
    const std::string_view payload = segment.payload(file);
    if (segment.marker == kAPP1 && payload.starts_with(kExifPrefix) && found.exif.empty())
      found.exif = cleanExif(payload);
    else if (segment.marker == kAPP1 && payload.starts_with(kXMPPrefix) && found.xmp.empty())
      found.xmp = behind(payload, kXMPPrefix.size());
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

// The text of an iTXt chunk behind its keyword: a flag for packing, its kind, a language, the keyword again.
std::string internationalText(std::string_view rest) {
  if (rest.size() < 2)
    return {};
  const bool isPacked = rest[0] == 1;
  rest.remove_prefix(2);
  for (int field = 0; field < 2; ++field) {
    const std::size_t end = rest.find('\0');
    if (end == std::string_view::npos)
      return {};
    rest.remove_prefix(end + 1);
  }
  return isPacked ? inflated(rest, kMostXMP).value_or("") : std::string(rest);
}

int hexValue(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The bytes of an older program's profile: a name, a length and hexadecimal digits, a line each.
std::string legacyProfile(std::string_view text) {
  for (int lines = 0; lines < 2; ++lines) {
    const std::size_t start = text.find_first_not_of(" \n");
    text = start == std::string_view::npos ? "" : text.substr(start);
    text = behind(text, text.find('\n'));
  }
  std::string bytes;
  int high = -1;
  for (const char c : text) {
    const int digit = hexValue(c);
    if (digit >= 0 && high >= 0)
      bytes += static_cast<char>(high * 16 + digit);
    if (digit >= 0)
      high = high >= 0 ? -1 : digit;
  }
  return bytes;
}

void addPngText(Metadata &found, std::string_view keyword, const std::string &text) {
  if (keyword == kPngXMP && found.xmp.empty())
    found.xmp = text;
  else if ((keyword == "Raw profile type exif"sv || keyword == "Raw profile type APP1"sv) &&
           found.exif.empty())
    found.exif = cleanExif(legacyProfile(text));
  else if (keyword == "Raw profile type xmp"sv && found.xmp.empty())
    found.xmp = legacyProfile(text);
  else if (keyword == "Raw profile type iptc"sv && found.iptc.empty())
    found.iptc = iptcOfPhotoshop(legacyProfile(text));
}

Metadata readPng(std::string_view file) {
  Metadata found;
  const auto chunks = pngChunks(file);
  if (const Chunk *exif = findChunk(chunks, "eXIf"))
    found.exif = cleanExif(exif->payload(file));
  for (const Chunk &chunk : chunks) {
    const std::string_view payload = chunk.payload(file);
    const std::string_view keyword = payload.substr(0, payload.find('\0'));
    const std::string_view rest = behind(payload, keyword.size() + 1);
    if (chunk.type == "iTXt"sv)
      addPngText(found, keyword, internationalText(rest));
    else if (chunk.type == "tEXt"sv)
      addPngText(found, keyword, std::string(rest));
    else if (chunk.type == "zTXt"sv)
      addPngText(found, keyword, inflated(behind(rest, 1), kMostXMP).value_or(""));
    else if (chunk.type == "iCCP"sv && found.icc.empty())
      found.icc = inflated(behind(rest, 1), kMostICC).value_or("");
  }
  return found;
}

Metadata readWebp(std::string_view file) {
  Metadata found;
  const auto chunks = webpChunks(file);
  if (const Chunk *exif = findChunk(chunks, "EXIF"))
    found.exif = cleanExif(exif->payload(file));
  if (const Chunk *xmp = findChunk(chunks, "XMP "))
    found.xmp = xmp->payload(file);
  if (const Chunk *icc = findChunk(chunks, "ICCP"))
    found.icc = icc->payload(file);
  return found;
}

Metadata readHeif(Bytes file) {
  HeifBlocks blocks = heifBlocks(file);
  return {.exif = cleanExif(blocks.exif),
          .xmp = std::move(blocks.xmp),
          .iptc = {},
          .icc = std::move(blocks.icc),
          .extendedXMP = {}};
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
  case PictureType::dng:
    return readTiff(file);
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return readHeif(file);
  case PictureType::gif:
    break;
  }
  return {};
}

bool hasLocation(const Metadata &metadata) {
  const auto exif = ExifBlock::parse(metadata.exif);
  return (exif && exif->hasGPS()) || xmpHasLocation(metadata.xmp) ||
         xmpMayHaveLocation(metadata.extendedXMP) || iptcHasLocation(metadata.iptc);
}

bool hasMetadata(const Metadata &metadata) {
  return !metadata.exif.empty() || !metadata.xmp.empty() || !metadata.iptc.empty() ||
         !metadata.extendedXMP.empty();
}

} // namespace fennick::picture
