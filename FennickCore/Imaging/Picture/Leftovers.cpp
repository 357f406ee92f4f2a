#include "FennickCore/Imaging/Picture/Leftovers.h"

#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/HeifFile.h"
#include "FennickCore/Imaging/Picture/LocationScan.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataPng.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>
#include <array>
#include <set>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::string_view kPhotoshopPrefix = "Photoshop 3.0\0"sv;
constexpr std::string_view kExtensionPrefix = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::size_t kPlainHeader = 14; // a JFIF header without thumbnail
constexpr std::size_t kAdobeHeader = 16;
constexpr std::size_t kMostItemBytes = 64UZ * 1'024 * 1'024; // for all items of a HEIF file
constexpr std::uint8_t kAPP14 = 0xEE;
constexpr std::uint8_t kComment = 0xFE;

constexpr std::array kPngPixels{"IHDR"sv, "PLTE"sv, "IDAT"sv, "IEND"sv, "tRNS"sv, "cHRM"sv, "gAMA"sv,
                                "iCCP"sv, "sBIT"sv, "sRGB"sv, "cICP"sv, "mDCV"sv, "cLLI"sv, "bKGD"sv,
                                "hIST"sv, "pHYs"sv, "sPLT"sv, "acTL"sv, "fcTL"sv, "fdAT"sv, "iDOT"sv};
constexpr std::array kWebpPixels{"VP8 "sv, "VP8L"sv, "VP8X"sv, "ALPH"sv, "ANIM"sv, "ANMF"sv, "ICCP"sv};
constexpr std::array kHeifBoxes{"ftyp"sv, "meta"sv, "mdat"sv};
constexpr std::array kAlphaKinds{"urn:mpeg:mpegB:cicp:systems:auxiliary:alpha"sv,
                                 "urn:mpeg:hevc:2015:auxid:1"sv};

template <std::size_t size>
bool isOneOf(std::string_view type, const std::array<std::string_view, size> &types) {
  return std::ranges::find(types, type) != types.end();
}

// Zeros after the end are padding.
void addTrailer(std::string_view file, std::size_t end, Leftovers &found) {
  const std::string_view trailer = behind(file, end);
  if (trailer.find_first_not_of('\0') != std::string_view::npos)
    found.add(trailerMayHaveLocation(trailer));
}

// EXIF that cannot be parsed here may be readable for other programs.
bool isUnreadableExif(std::string_view payload) { return !ExifBlock::parse(payload); }

bool photoshopHasOtherLocation(std::string_view block) {
  return std::ranges::any_of(photoshopResources(block), [](const PhotoshopResource &resource) {
    return resource.kind != kIptcResource && bytesMayHaveLocation(resource.data);
  });
}

bool segmentHasOtherLocation(std::string_view payload) {
  if (payload.starts_with(kExifPrefix))
    return isUnreadableExif(payload);
  if (payload.starts_with(kXMPPrefix) || payload.starts_with(kExtensionPrefix) ||
      payload.starts_with(kPhotoshopPrefix))
    return false; // read by readMetadata, and below for all segments together
  return bytesMayHaveLocation(payload);
}

// Finds comments and blocks between the scans of a picture, which few readers examine. Such markers do not
// occur within the coded data.
bool hasBlockWithin(std::string_view scans) {
  for (auto at = scans.find('\xFF'); at != std::string_view::npos; at = scans.find('\xFF', at + 1)) {
    const auto marker = at + 1 < scans.size() ? static_cast<unsigned char>(scans[at + 1]) : 0U;
    if (marker == kComment || (marker & 0xF0) == 0xE0)
      return true;
  }
  return false;
}

Leftovers jpegLeftovers(std::string_view file) {
  Leftovers found;
  std::string photoshop;
  std::size_t scansAt = file.size(); // nothing is known about a file without a header
  const auto segments = jpegSegments(file);
  if (segments.size() == kMostParts)
    found.add(true); // there is more than was read
  if (!segments.empty() && !isGapless(segments, file))
    found.add(false);
  for (const JpegSegment &segment : segments) {
    const std::string_view payload = segment.payload(file);
    scansAt = segment.end;
    if (isNeededForPixels(segment, file))
      continue;
    found.add(segmentHasOtherLocation(payload));
    if (payload.starts_with(kPhotoshopPrefix))
      photoshop += behind(payload, kPhotoshopPrefix.size());
  }
  found.location = found.location || photoshopHasOtherLocation(photoshop);
  const auto end = jpegEnd(file).value_or(file.size());
  const std::string_view scans = file.substr(std::min(scansAt, end), end - std::min(scansAt, end));
  if (hasBlockWithin(scans))
    found.add(bytesMayHaveLocation(scans));
  addTrailer(file, end, found);
  return found;
}

// A text that is too large to decompress may contain anything.
bool pngTextHasLocation(const Chunk &chunk, std::string_view file, Unpacker &unpack) {
  const std::string_view keyword = pngKeyword(chunk, file);
  const std::string text = pngText(chunk, file, unpack);
  if (text.empty())
    return chunk.type != "tEXt"sv && chunk.payloadBytes > keyword.size() + 6;
  if (keyword == kPngXMP)
    return false;
  return keyword.starts_with(kPngLegacyProfile) ? bytesMayHaveLocation(pngLegacyProfile(text))
                                                : bytesMayHaveLocation(std::string(keyword) + ' ' + text);
}

Leftovers pngLeftovers(std::string_view file) {
  Leftovers found;
  Unpacker unpack;
  const auto chunks = pngChunks(file);
  for (const Chunk &chunk : chunks) {
    if (isPngText(chunk))
      found.add(pngTextHasLocation(chunk, file, unpack));
    else if (chunk.type == "eXIf"sv)
      found.add(isUnreadableExif(chunk.payload(file)));
    else if (!isOneOf(chunk.type, kPngPixels))
      found.add(bytesMayHaveLocation(chunk.payload(file)));
  }
  if (chunks.size() == kMostParts)
    found.add(true); // there is more than was read
  // Everything after the end, or after the first unreadable part.
  if (!chunks.empty())
    addTrailer(file, chunks.back().end, found);
  return found;
}

Leftovers webpLeftovers(std::string_view file) {
  Leftovers found;
  const auto chunks = webpChunks(file);
  for (const Chunk &chunk : chunks) {
    if (chunk.type == "EXIF"sv)
      found.add(isUnreadableExif(chunk.payload(file)));
    else if (!isOneOf(chunk.type, kWebpPixels))
      found.add(chunk.type != "XMP "sv && bytesMayHaveLocation(chunk.payload(file)));
  }
  // Everything after the end, or after the first unreadable part.
  if (!chunks.empty())
    addTrailer(file, chunks.back().end, found);
  return found;
}

bool isAlpha(std::string_view file, const HeifFile &heif, std::uint32_t item) {
  const HeifBox *kind = heif.propertyOf(item, "auxC");
  if (kind == nullptr)
    return false;
  const std::string_view text = behind(file.substr(0, kind->end), kind->payloadAt + 4);
  return isOneOf(text.substr(0, text.find('\0')), kAlphaKinds);
}

// Returns the primary picture, its transparency, and the parts that these consist of.
std::set<std::uint32_t> pixelItems(std::string_view file, const HeifFile &heif) {
  constexpr int kDeepest = 8; // an overlay of rotated grids has three levels
  std::set<std::uint32_t> items{heif.primary};
  const auto holds = [&](std::uint32_t item) { return items.contains(item); };
  std::size_t before = 0;
  for (int level = 0; level < kDeepest && before != items.size(); ++level) {
    before = items.size();
    for (const HeifReference &reference : heif.references)
      if (reference.type == "dimg"sv && items.contains(reference.from))
        items.insert(reference.to.begin(), reference.to.end());
      else if (reference.type == "auxl"sv && std::ranges::any_of(reference.to, holds) &&
               isAlpha(file, heif, reference.from))
        items.insert(reference.from);
  }
  return items;
}

// Items may share their data. `room` is how many bytes are still read; what is not read, or cannot be, may
// contain a location.
bool itemHasLocation(std::string_view file, const HeifFile &heif, const HeifItem &item, std::size_t &room) {
  constexpr std::array kPictures{"hvc1"sv, "av01"sv, "grid"sv, "iden"sv, "iovl"sv, "tmap"sv, "j2k1"sv};
  if (isOneOf(item.type, kPictures))
    return false;
  const std::string data = room > 0 ? heifItemData(file, heif, &item) : std::string();
  if (data.empty())
    return room == 0 || !item.extents.empty();
  room -= std::min(room, data.size());
  if (item.type == "Exif"sv) {
    const auto block = ExifBlock::parse(behind(data, 4 + readNumber(data, 0, 4).value_or(0)));
    return !block || block->hasGPS();
  }
  return item.contentType == "application/rdf+xml" ? xmpHasLocation(data) : bytesMayHaveLocation(data);
}

Leftovers heifLeftovers(std::string_view file) {
  Leftovers found;
  const auto boxes = heifBoxes(file, 0, file.size());
  for (const HeifBox &box : boxes) {
    const std::string_view payload = file.substr(box.payloadAt, box.end - box.payloadAt);
    const bool isSpace = box.type == "free"sv || box.type == "skip"sv;
    if (isSpace)
      addTrailer(payload, 0, found);
    else if (!isOneOf(box.type, kHeifBoxes))
      found.add(trailerMayHaveLocation(payload));
  }
  addTrailer(file, boxes.empty() ? file.size() : boxes.back().end, found);
  const auto heif = HeifFile::parse(file);
  if (!heif) {
    found.add(true); // other programs may be able to read it
    return found;
  }
  const auto pixels = pixelItems(file, *heif);
  std::size_t room = kMostItemBytes;
  for (const HeifItem &item : heif->items)
    if (!pixels.contains(item.id))
      found.add(itemHasLocation(file, *heif, item, room));
  return found;
}

// The metadata reader cannot read BigTIFF and damaged files.
Leftovers tiffLeftovers(std::string_view file) {
  constexpr std::uint16_t kGPSDirectory = 0x8825;
  Leftovers found;
  const auto layout = TiffLayout::of(file);
  for (const TiffDirectory &directory : layout ? layout->chain(file) : std::vector<TiffDirectory>())
    if (directory.find(kGPSDirectory) != nullptr)
      found.add(true);
  return found;
}

} // namespace

Leftovers leftovers(Bytes bytes, PictureType type) {
  const std::string_view file = textOf(bytes);
  switch (type) {
  case PictureType::jpeg:
    return jpegLeftovers(file);
  case PictureType::png:
    return pngLeftovers(file);
  case PictureType::webp:
    return webpLeftovers(file);
  case PictureType::tiff:
    return tiffLeftovers(file);
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return heifLeftovers(file);
  case PictureType::gif:
    return {.any = false, .location = bytesMayHaveLocation(file)};
  default:
    return {};
  }
}

bool isNeededForPixels(const JpegSegment &segment, std::string_view file) {
  const std::string_view payload = segment.payload(file);
  switch (segment.marker) {
  case kAPP0:
    return payload.starts_with("JFIF\0"sv) && payload.size() <= kPlainHeader;
  case kAPP2:
    return payload.starts_with("ICC_PROFILE\0"sv);
  case kAPP14:
    return payload.starts_with("Adobe"sv) && payload.size() <= kAdobeHeader;
  default:
    return segment.marker != kComment && (segment.marker & 0xF0) != 0xE0;
  }
}

} // namespace fennick::picture
