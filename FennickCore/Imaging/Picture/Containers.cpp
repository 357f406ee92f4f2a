#include "FennickCore/Imaging/Picture/Containers.h"

#include <algorithm>
#include <limits>
#include <utility>

#define ZLIB_CONST // what zlib reads is const to it
#include <zlib.h>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::size_t kMostPayload = 65'533;
constexpr std::size_t kMostUnpacked = 4UZ * 1'024 * 1'024;
constexpr std::size_t kPngSignature = 8;
constexpr std::size_t kRiffHeader = 12;
constexpr unsigned kStartOfScan = 0xDA;
constexpr unsigned kEndOfImage = 0xD9;

const Bytef *zlibBytes(std::string_view text) { return reinterpret_cast<const Bytef *>(text.data()); }

// Start of image, restarts and the temporary marker have no payload.
bool standsAlone(unsigned marker) { return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8); }

// Frame markers form a range, except for those of tables and the reserved one.
bool isFrame(unsigned marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// The next marker from `at` on, after stray bytes and fill bytes, and the position after it.
struct Marker {
  unsigned code = 0;
  std::size_t at = 0;
  std::size_t end = 0;
};
std::optional<Marker> nextMarker(std::string_view file, std::size_t at) {
  for (at = file.find('\xFF', at); at != std::string_view::npos; at = file.find('\xFF', at)) {
    const std::size_t code = file.find_first_not_of('\xFF', at);
    if (code == std::string_view::npos)
      break;
    if (file[code] != '\0')
      return Marker{static_cast<unsigned char>(file[code]), at, code + 1};
    at = code;
  }
  return std::nullopt;
}

std::optional<JpegSegment> segmentOf(std::string_view file, const Marker &marker) {
  const auto length = readNumber(file, marker.end, 2);
  if (!length || *length < 2 || !slice(file, marker.end, *length))
    return std::nullopt;
  return JpegSegment{{.at = marker.at,
                      .payloadAt = marker.end + 2,
                      .payloadBytes = static_cast<std::size_t>(*length - 2),
                      .end = marker.end + static_cast<std::size_t>(*length)},
                     static_cast<std::uint8_t>(marker.code)};
}

// Returns the next marker in entropy-coded data that is neither a stuffed byte nor a restart.
std::size_t behindScan(std::string_view file, std::size_t at) {
  for (at = file.find('\xFF', at); at < file.size() - 1; at = file.find('\xFF', at + 1)) {
    const auto code = static_cast<unsigned char>(file[at + 1]);
    if (code != 0 && code != 0xFF && !standsAlone(code))
      return at;
  }
  return file.size();
}

// Decompresses zlib data. Returns nullopt if it is damaged or larger than `limit`.
std::optional<std::string> inflated(std::string_view packed, std::size_t limit) {
  z_stream stream{};
  if (packed.size() > std::numeric_limits<uInt>::max() || inflateInit(&stream) != Z_OK)
    return std::nullopt;
  stream.next_in = zlibBytes(packed);
  stream.avail_in = static_cast<uInt>(packed.size());
  std::string plain;
  int status = Z_OK;
  while (status == Z_OK && plain.size() <= limit) {
    const std::size_t had = plain.size();
    plain.resize(had + std::min(64UZ * 1'024, limit + 1 - had + 1));
    stream.next_out = reinterpret_cast<Bytef *>(plain.data() + had);
    stream.avail_out = static_cast<uInt>(plain.size() - had);
    status = inflate(&stream, Z_NO_FLUSH);
    plain.resize(plain.size() - stream.avail_out);
  }
  inflateEnd(&stream);
  if (status != Z_STREAM_END || plain.size() > limit)
    return std::nullopt;
  return plain;
}

} // namespace

std::vector<JpegSegment> jpegSegments(std::string_view file) {
  std::vector<JpegSegment> segments;
  if (!file.starts_with("\xFF\xD8"sv))
    return segments;
  std::size_t at = 2;
  while (segments.size() < kMostParts) {
    const auto marker = nextMarker(file, at);
    if (!marker || marker->code == kStartOfScan || marker->code == kEndOfImage)
      break;
    at = marker->end;
    if (standsAlone(marker->code))
      continue;
    const auto segment = segmentOf(file, *marker);
    if (!segment)
      break;
    segments.push_back(*segment);
    at = segment->end;
  }
  return segments;
}

bool isGapless(const std::vector<JpegSegment> &segments, std::string_view file) {
  std::size_t at = 2;
  for (const JpegSegment &segment : segments)
    if (segment.at != std::exchange(at, segment.end))
      return false;
  return file.substr(at).starts_with("\xFF\xDA"sv);
}

std::optional<PixelSize> jpegFrameSize(std::string_view file) {
  const auto segments = jpegSegments(file);
  const auto frame =
      std::ranges::find_if(segments, [](const JpegSegment &segment) { return isFrame(segment.marker); });
  if (frame == segments.end() || frame->payloadBytes < 5)
    return std::nullopt;
  const auto height = readNumber(frame->payload(file), 1, 2).value_or(0);
  const auto width = readNumber(frame->payload(file), 3, 2).value_or(0);
  if (width == 0 || height == 0)
    return std::nullopt;
  return PixelSize{.width = static_cast<std::int64_t>(width), .height = static_cast<std::int64_t>(height)};
}

std::optional<std::string> jpegSegment(std::uint8_t marker, std::string_view payload) {
  if (payload.size() > kMostPayload)
    return std::nullopt;
  return "\xFF" + std::string(1, static_cast<char>(marker)) + numberText(payload.size() + 2, 2) +
         std::string(payload);
}

std::optional<std::size_t> jpegEnd(std::string_view file) {
  std::size_t at = 0;
  while (const auto marker = nextMarker(file, at)) {
    at = marker->end;
    if (marker->code == kEndOfImage)
      return at;
    if (standsAlone(marker->code))
      continue;
    const auto segment = segmentOf(file, *marker);
    if (!segment)
      break;
    at = marker->code == kStartOfScan ? behindScan(file, segment->end) : segment->end;
  }
  return std::nullopt;
}

std::vector<Chunk> pngChunks(std::string_view file) {
  std::vector<Chunk> chunks;
  std::size_t at = kPngSignature;
  while (chunks.size() < kMostParts) {
    const auto length = readNumber(file, at, 4);
    const auto type = slice(file, at + 4, 4);
    if (!length || !type || !slice(file, at + 8, *length + 4))
      break;
    const std::size_t payloadBytes = *length;
    const std::size_t end = at + 12 + payloadBytes;
    if (*type != "IDAT"sv || chunks.empty() || chunks.back().type != *type)
      chunks.push_back({{at, at + 8, payloadBytes, end}, std::string(*type)});
    at = end;
    if (*type == "IEND"sv)
      break;
  }
  return chunks;
}

std::optional<PngText> internationalText(std::string_view rest) {
  if (rest.size() < 2)
    return std::nullopt;
  const bool isPacked = rest[0] == 1;
  rest.remove_prefix(2);
  for (int field = 0; field < 2; ++field) {
    const std::size_t end = rest.find('\0');
    if (end == std::string_view::npos)
      return std::nullopt;
    rest.remove_prefix(end + 1);
  }
  return PngText{isPacked, rest};
}

std::string pngChunk(std::string_view type, std::string_view payload) {
  const std::string body = std::string(type) + std::string(payload);
  const auto sum = crc32_z(crc32_z(0, nullptr, 0), zlibBytes(body), body.size());
  return numberText(payload.size(), 4) + body + numberText(sum, 4);
}

std::vector<Chunk> webpChunks(std::string_view file) {
  std::vector<Chunk> chunks;
  file = file.substr(0, 8 + readNumber(file, 4, 4, ByteOrder::little).value_or(0));
  std::size_t at = kRiffHeader;
  while (chunks.size() < kMostParts) {
    const auto type = slice(file, at, 4);
    const auto length = readNumber(file, at + 4, 4, ByteOrder::little);
    if (!type || !length || !slice(file, at + 8, *length))
      break;
    const std::size_t payloadBytes = *length;
    const std::size_t end = std::min(file.size(), at + 8 + payloadBytes + payloadBytes % 2);
    chunks.push_back({{at, at + 8, payloadBytes, end}, std::string(*type)});
    at = end;
  }
  return chunks;
}

std::string webpChunk(std::string_view type, std::string_view payload) {
  return std::string(type) + numberText(payload.size(), 4, ByteOrder::little) + std::string(payload) +
         std::string(payload.size() % 2, '\0');
}

const Chunk *findChunk(const std::vector<Chunk> &chunks, std::string_view type) {
  const auto found = std::ranges::find(chunks, type, &Chunk::type);
  return found == chunks.end() ? nullptr : &*found;
}

std::string Unpacker::operator()(std::string_view packed) {
  const std::size_t limit = std::min(room_, kMostUnpacked);
  auto plain = limit > 0 ? inflated(packed, limit) : std::nullopt;
  room_ -= plain ? plain->size() : limit;
  return std::move(plain).value_or("");
}

std::string deflated(std::string_view plain) {
  uLongf size = compressBound(plain.size());
  std::string packed(size, '\0');
  if (compress(reinterpret_cast<Bytef *>(packed.data()), &size, zlibBytes(plain), plain.size()) != Z_OK)
    size = 0; // no memory; reading an empty stream fails
  packed.resize(size);
  return packed;
}

} // namespace fennick::picture
