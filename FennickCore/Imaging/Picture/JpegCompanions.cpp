#include "FennickCore/Imaging/Picture/JpegCompanions.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/EmbeddedVideo.h"

#include <algorithm>
#include <array>
#include <limits>

namespace fennick::picture {

using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

constexpr std::string_view kMPFPrefix = "MPF\0"sv;
constexpr std::string_view kISOPrefix = "urn:iso:std:iso:ts:21496:-1\0"sv;
constexpr int kMostPictures = 32;

// Samsung's trailer: blocks, each with a kind and a name, then a directory that counts backwards from its
// start.
constexpr std::size_t kDirectoryHeader = 12, kDirectoryEntry = 12, kDirectoryEnd = 8;
constexpr std::uint64_t kMostBlocks = 256;
constexpr std::uint64_t kVideoKind = 0x0A30;
constexpr std::string_view kVideoName = "MotionPhoto_Data";
constexpr std::uint64_t kDirectoryVersion = 106;

std::string little(std::uint64_t value, std::size_t width) {
  return numberText(value, width, ByteOrder::little);
}

bool isGainMap(std::string_view jpeg) {
  return std::ranges::any_of(jpegSegments(jpeg), [&](const JpegSegment &segment) {
    const std::string_view payload = segment.payload(jpeg);
    const auto holds = [&](std::string_view word) { return payload.find(word) != std::string_view::npos; };
    const bool isAdobes = holds("ns.adobe.com/hdr-gain-map/"sv) && holds("GainMapM"sv);
    return payload.starts_with(kISOPrefix) ||
           (payload.starts_with(kXMPPrefix) && (isAdobes || holds("HDRGainMap"sv) || holds("hdrgainmap"sv)));
  });
}

std::optional<HeifStretch> gainMapWithin(std::string_view file, std::size_t from, std::size_t to) {
  int pictures = 0;
  const std::string_view region = file.substr(0, to);
  for (auto at = region.find("\xFF\xD8\xFF"sv, from);
       at != std::string_view::npos && pictures < kMostPictures; ++pictures) {
    const std::string_view rest = region.substr(at);
    const auto length = jpegEnd(rest);
    if (length && isGainMap(rest.substr(0, *length)))
      return HeifStretch{at, *length};
    at = region.find("\xFF\xD8\xFF"sv, at + length.value_or(1));
  }
  return std::nullopt;
}

// Returns the start of Samsung's trailer, not before `from`, or nullopt if the file does not end with one.
std::optional<std::size_t> samsungTrailerAt(std::string_view file, std::size_t from) {
  if (!file.ends_with("SEFT"sv) || file.size() < from + kDirectoryEnd)
    return std::nullopt;
  const std::size_t end = file.size() - kDirectoryEnd;
  const std::size_t length = readNumber(file, end, 4, ByteOrder::little).value_or(0);
  if (length < kDirectoryHeader || length > end - from || !file.substr(end - length).starts_with("SEFH"sv))
    return std::nullopt;
  const std::size_t directory = end - length;
  const auto count = readNumber(file, directory + 8, 4, ByteOrder::little).value_or(0);
  std::size_t first = directory;
  for (std::uint64_t i = 0; i < std::min(count, kMostBlocks); ++i) {
    const auto back =
        readNumber(file, directory + kDirectoryHeader + i * kDirectoryEntry + 4, 4, ByteOrder::little)
            .value_or(0);
    if (back > directory - from)
      return std::nullopt;
    first = std::min(first, directory - static_cast<std::size_t>(back));
  }
  return first;
}

VideoTrailer samsungTrailer(std::string video) {
  VideoTrailer trailer{.bytes = "\0\0"s + little(kVideoKind, 2) + little(kVideoName.size(), 4) +
                                std::string(kVideoName)};
  trailer.videoAt = trailer.bytes.size();
  const std::size_t block = trailer.videoAt + video.size();
  trailer.bytes += video;
  trailer.bytes += "SEFH" + little(kDirectoryVersion, 4) + little(1, 4) + "\0\0"s + little(kVideoKind, 2) +
                   little(block, 4) + little(block, 4) + little(kDirectoryHeader + kDirectoryEntry, 4) +
                   "SEFT";
  return trailer;
}

// Returns where a further block goes: after the existing ones.
std::size_t endOfBlocks(std::string_view jpeg) {
  std::size_t end = 2;
  for (const JpegSegment &segment : jpegSegments(jpeg))
    if ((segment.marker & 0xF0) == 0xE0)
      end = segment.end;
  return end;
}

std::string pictureEntry(std::uint64_t attributes, std::uint64_t bytes, std::uint64_t offset) {
  return numberText(attributes, 4) + numberText(bytes, 4) + numberText(offset, 4) + numberText(0, 4);
}

// For two pictures; `offset` of the second counts from the end of the prefix.
std::string directorySegment(std::uint64_t firstBytes, std::uint64_t secondBytes, std::uint64_t offset) {
  constexpr std::uint64_t kPrimary = 0x030000, kEntriesAt = 50, kUndefined = 7, kLong = 4;
  const auto entry = [](std::uint64_t tag, std::uint64_t type, std::uint64_t count,
                        const std::string &value) {
    return numberText(tag, 2) + numberText(type, 2) + numberText(count, 4) + value;
  };
  return jpegSegment(kAPP2, std::string(kMPFPrefix) + "MM\0*"s + numberText(8, 4) + numberText(3, 2) +
                                entry(0xB000, kUndefined, 4, "0100") +
                                entry(0xB001, kLong, 1, numberText(2, 4)) +
                                entry(0xB002, kUndefined, 32, numberText(kEntriesAt, 4)) + numberText(0, 4) +
                                pictureEntry(kPrimary, firstBytes, 0) + pictureEntry(0, secondBytes, offset))
      .value_or("");
}

} // namespace

JpegCompanions jpegCompanions(std::string_view file) {
  JpegCompanions found;
  const auto end = jpegEnd(file);
  if (!end || *end >= file.size())
    return found;
  found.video = findVideo(file, *end);
  std::size_t picturesEnd = file.size();
  if (found.video) {
    const auto samsung = samsungTrailerAt(file, *end);
    found.isSamsungTrailer = samsung && *samsung <= found.video->at;
    found.trailerAt = found.isSamsungTrailer ? *samsung : found.video->at;
    picturesEnd = found.trailerAt;
  }
  found.gainMap = gainMapWithin(file, *end, picturesEnd);
  return found;
}

VideoTrailer videoTrailer(std::string_view file, const JpegCompanions &companions) {
  if (!companions.video)
    return {};
  return {.bytes = std::string(file.substr(companions.trailerAt)),
          .videoAt = companions.video->at - companions.trailerAt};
}

VideoTrailer cleanVideoTrailer(std::string_view file, const JpegCompanions &companions) {
  if (!companions.video)
    return {};
  auto video = videoWithoutLocation(file.substr(companions.video->at, companions.video->length));
  if (!video)
    return {};
  return companions.isSamsungTrailer ? samsungTrailer(std::move(*video))
                                     : VideoTrailer{.bytes = std::move(*video)};
}

std::string isoGainMapBlock(std::string_view jpeg) {
  for (const JpegSegment &segment : jpegSegments(jpeg))
    if (segment.marker == kAPP2 && segment.payload(jpeg).starts_with(kISOPrefix))
      return std::string(segment.payload(jpeg));
  return {};
}

std::string withIsoGainMapBlock(std::string jpeg, std::string_view block) {
  if (!block.empty())
    jpeg.insert(endOfBlocks(jpeg), jpegSegment(kAPP2, block).value_or(""));
  return jpeg;
}

std::string withGainMap(std::string picture, std::string_view gainMap) {
  const std::size_t at = endOfBlocks(picture);
  const std::size_t bytes = picture.size() + directorySegment(0, 0, 0).size();
  const std::size_t header = at + 4 + kMPFPrefix.size();
  if (bytes + gainMap.size() > std::numeric_limits<std::uint32_t>::max())
    return {};
  picture.insert(at, directorySegment(bytes, gainMap.size(), bytes - header));
  return picture.append(gainMap);
}

bool announcesGainMap(std::string_view payload) {
  return payload.starts_with(kMPFPrefix) || payload.starts_with(kISOPrefix);
}

} // namespace fennick::picture
