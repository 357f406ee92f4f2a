#include "FennickCore/Imaging/Picture/OrientationContainers.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>
#include <ranges>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::uint16_t kOrientation = 0x0112;
constexpr std::uint16_t kXMP = 0x02BC;

constexpr std::string_view kMPFPrefix = "MPF\0"sv;
constexpr std::uint16_t kMPEntries = 0xB002;
constexpr std::size_t kMPEntryBytes = 16;

constexpr std::string_view kPngXMP = "XML:com.adobe.xmp\0"sv;

constexpr unsigned char kWebpHasExif = 0x08;
constexpr unsigned char kWebpHasAlpha = 0x10;

// A range of bytes in a file and its replacement.
struct Replacement {
  std::size_t from = 0;
  std::size_t to = 0;
  std::string text;

  [[nodiscard]] std::int64_t growth() const {
    return std::ssize(text) - static_cast<std::int64_t>(to - from);
  }
};

// Returns the EXIF data in `payload` with the orientation set, or nullopt if it is not EXIF or cannot hold
// it.
std::optional<std::string> turnedBlock(std::string_view payload, std::uint16_t orientation) {
  auto block = ExifBlock::parse(payload);
  if (!block)
    return std::nullopt;
  const std::string prefix(payload.substr(0, payload.size() - block->tiff().size()));
  if (!block->setOrientation(orientation))
    return std::nullopt;
  return prefix + block->tiff();
}

// Adds to a four-byte number in a multi-picture directory, which wraps around as for its readers.
void addTo(std::string &data, std::size_t at, std::int64_t amount, ByteOrder order) {
  const auto value = readNumber(data, at, 4, order).value_or(0);
  writeNumber(data, at, value + static_cast<std::uint64_t>(amount), 4, order);
}

// The first picture's length grows with the replacement. The positions of the others count from the
// directory's own header: they change only if the replacement lies between the two.
void adjustPictures(std::string &directory, std::size_t header, const Replacement &replacement) {
  const auto layout = TiffLayout::of(directory);
  if (!layout || layout->isBig)
    return;
  const auto first = layout->firstDirectory(directory);
  const TiffEntry *entries = first ? first->find(kMPEntries) : nullptr;
  if (entries == nullptr)
    return;
  for (std::size_t i = 0; i < entries->valueBytes / kMPEntryBytes; ++i) {
    const std::size_t entry = entries->valueAt + i * kMPEntryBytes;
    const auto offset = readNumber(directory, entry + 8, 4, layout->order).value_or(0);
    if (offset == 0)
      addTo(directory, entry + 4, replacement.growth(), layout->order);
    else if (header < replacement.from && header + offset >= replacement.to)
      addTo(directory, entry + 8, replacement.growth(), layout->order);
  }
}

std::string replaced(std::string_view file, const Replacement &replacement) {
  std::string out(file);
  out.replace(replacement.from, replacement.to - replacement.from, replacement.text);
  return out;
}

// Returns the replacement that sets the orientation: of the EXIF segment, or a new segment.
std::optional<Replacement> jpegReplacement(std::string_view file, const std::vector<JpegSegment> &segments,
                                           std::uint16_t orientation) {
  for (const JpegSegment &segment : segments) {
    const std::string_view payload = segment.payload(file);
    if (segment.marker != kAPP1 || !payload.starts_with(kExifPrefix) || !ExifBlock::parse(payload))
      continue;
    const auto block = turnedBlock(payload, orientation);
    const auto text = block ? jpegSegment(kAPP1, *block) : std::nullopt;
    return text ? std::optional(Replacement{segment.at, segment.end, *text}) : std::nullopt;
  }
  const std::size_t at = segments[0].marker == kAPP0 ? segments[0].end : 2;
  return Replacement{
      at, at, jpegSegment(kAPP1, std::string(kExifPrefix) + ExifBlock::minimal(orientation)).value_or("")};
}

// Builds the extended header that a simple file lacks. Returns nullopt if the picture's header is damaged.
std::optional<std::string> extendedHeader(std::string_view file, const Chunk &picture) {
  const std::string_view payload = picture.payload(file);
  std::uint64_t width = 0, height = 0;
  unsigned char flags = kWebpHasExif;
  if (picture.type == "VP8L"sv && payload.size() >= 5) {
    const std::uint64_t bits = readNumber(payload, 1, 4, ByteOrder::little).value_or(0);
    width = bits & 0x3FFF;
    height = bits >> 14 & 0x3FFF;
    flags |= (bits >> 28 & 1) != 0 ? kWebpHasAlpha : 0;
  } else if (picture.type == "VP8 "sv && payload.size() >= 10) {
    width = (readNumber(payload, 6, 2, ByteOrder::little).value_or(0) & 0x3FFF) - 1;
    height = (readNumber(payload, 8, 2, ByteOrder::little).value_or(0) & 0x3FFF) - 1;
  } else {
    return std::nullopt;
  }
  return webpChunk("VP8X", numberText(flags, 4, ByteOrder::little) + numberText(width, 3, ByteOrder::little) +
                               numberText(height, 3, ByteOrder::little));
}

// Inserts an EXIF chunk into a file without one, before XMP or at the end, and announces it in the header.
Turned webpWithNewExif(std::string_view file, const std::vector<Chunk> &chunks, std::uint16_t orientation) {
  std::string out(file);
  const Chunk *xmp = findChunk(chunks, "XMP ");
  const Chunk &last = chunks.back();
  const std::size_t at = (xmp != nullptr) ? xmp->at : last.end;
  const std::size_t missing =
      (xmp != nullptr) ? 0 : (last.end - last.payloadAt) % 2; // chunks have an even length
  out.insert(at, std::string(missing, '\0') + webpChunk("EXIF", ExifBlock::minimal(orientation)));
  const Chunk &first = chunks[0];
  if (first.type == "VP8X"sv && first.payloadBytes >= 10) {
    out[first.payloadAt] = static_cast<char>(out[first.payloadAt] | kWebpHasExif);
    return out;
  }
  const auto header = extendedHeader(file, first);
  if (!header)
    return std::unexpected(PictureFault::undecodable);
  return out.insert(first.at, *header);
}

// Returns a PNG text that is an XMP packet with the orientation set, compressed as before; nullopt for other
// texts and if it stays the same.
std::optional<std::string> turnedPacket(std::string_view payload, std::uint16_t orientation,
                                        Unpacker &unpack) {
  const auto text =
      payload.starts_with(kPngXMP) ? internationalText(payload.substr(kPngXMP.size())) : std::nullopt;
  if (!text)
    return std::nullopt;
  const std::string before = text->isPacked ? unpack(text->text) : std::string(text->text);
  std::string packet = before;
  setXmpOrientation(packet, 0, packet.size(), orientation);
  if (packet == before)
    return std::nullopt;
  const std::string_view front = payload.substr(0, payload.size() - text->text.size());
  return std::string(front) + (text->isPacked ? deflated(packet) : packet);
}

} // namespace

Turned jpegWithOrientation(std::string_view file, std::uint16_t orientation) {
  const auto segments = jpegSegments(file);
  if (segments.empty())
    return std::unexpected(PictureFault::undecodable);
  const auto replacement = jpegReplacement(file, segments, orientation);
  if (!replacement)
    return std::unexpected(PictureFault::unsupported);
  std::string adjusted(file);
  for (const JpegSegment &segment : segments) {
    const std::string_view payload = segment.payload(file);
    if (segment.marker == kAPP1 && payload.starts_with(kXMPPrefix))
      setXmpOrientation(adjusted, segment.payloadAt, segment.payloadBytes, orientation);
    if (segment.marker != kAPP2 || !payload.starts_with(kMPFPrefix))
      continue;
    const std::size_t header = segment.payloadAt + kMPFPrefix.size();
    std::string directory(payload.substr(kMPFPrefix.size()));
    adjustPictures(directory, header, *replacement);
    adjusted.replace(header, directory.size(), directory);
  }
  return replaced(adjusted, *replacement);
}

Turned pngWithOrientation(std::string_view file, std::uint16_t orientation) {
  const auto chunks = pngChunks(file);
  const Chunk *pixels = findChunk(chunks, "IDAT");
  if (pixels == nullptr)
    return std::unexpected(PictureFault::undecodable);
  const Chunk *exif = findChunk(chunks, "eXIf");
  const auto block = (exif != nullptr) ? turnedBlock(exif->payload(file), orientation)
                                       : std::optional(ExifBlock::minimal(orientation));
  if (!block)
    return std::unexpected(PictureFault::unsupported);
  std::string turned(file);
  Unpacker unpack;
  for (const Chunk &chunk :
       chunks | std::views::reverse) { // from the end, so that earlier positions stay valid
    const auto packet =
        chunk.type == "iTXt"sv ? turnedPacket(chunk.payload(file), orientation, unpack) : std::nullopt;
    if (packet)
      turned.replace(chunk.at, chunk.end - chunk.at, pngChunk(chunk.type, *packet));
    else if (&chunk == exif)
      turned.replace(chunk.at, chunk.end - chunk.at, pngChunk("eXIf", *block));
    else if (&chunk == pixels && exif == nullptr)
      turned.insert(chunk.at, pngChunk("eXIf", *block));
  }
  return turned;
}

Turned webpWithOrientation(std::string_view file, std::uint16_t orientation) {
  const auto chunks = webpChunks(file);
  if (chunks.empty())
    return std::unexpected(PictureFault::undecodable);
  std::string adjusted(file);
  if (const Chunk *xmp = findChunk(chunks, "XMP "))
    setXmpOrientation(adjusted, xmp->payloadAt, xmp->payloadBytes, orientation);
  Turned turned;
  if (const Chunk *exif = findChunk(chunks, "EXIF")) {
    const auto block = turnedBlock(exif->payload(file), orientation);
    if (!block)
      return std::unexpected(PictureFault::unsupported);
    turned = replaced(adjusted, {exif->at, exif->end, webpChunk("EXIF", *block)});
  } else {
    turned = webpWithNewExif(adjusted, chunks, orientation);
  }
  if (turned) // WebP files are smaller than 4 GB
    writeNumber(*turned, 4,
                readNumber(file, 4, 4, ByteOrder::little).value_or(0) + turned->size() - file.size(), 4,
                ByteOrder::little);
  return turned;
}

Turned tiffWithOrientation(std::string_view file, std::uint16_t orientation) {
  const auto layout = TiffLayout::of(file);
  if (!layout)
    return std::unexpected(PictureFault::undecodable);
  const auto first = layout->firstDirectory(file);
  if (!first)
    return std::unexpected(PictureFault::undecodable);
  std::string turned(file);
  const TiffEntry *entry = first->find(kOrientation);
  const bool isSet = (entry != nullptr) ? layout->setNumber(turned, *entry, orientation)
                                        : layout->appendShort(turned, kOrientation, orientation);
  if (!isSet)
    return std::unexpected(PictureFault::unsupported);
  if (const TiffEntry *xmp = first->find(kXMP))
    setXmpOrientation(turned, xmp->valueAt, xmp->valueBytes, orientation);
  return turned;
}

std::optional<std::int64_t> tiffOrientation(std::string_view file) {
  const auto layout = TiffLayout::of(file);
  if (!layout)
    return std::nullopt;
  const auto first = layout->firstDirectory(file);
  const TiffEntry *entry = first ? first->find(kOrientation) : nullptr;
  const auto value = (entry != nullptr) ? layout->number(file, *entry) : std::nullopt;
  return value ? std::optional(static_cast<std::int64_t>(*value)) : std::nullopt;
}

} // namespace fennick::picture
