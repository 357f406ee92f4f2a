#include "FennickCore/Imaging/Picture/PictureSniffer.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Imaging/Picture/RawStructure.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::size_t kMostBrands = 64;
constexpr std::string_view kMPFPrefix = "MPF\0"sv;
constexpr std::uint16_t kPictureEntries = 0xB002; // of a multi-picture directory, 16 bytes each
constexpr std::size_t kPictureEntryBytes = 16;
constexpr std::uint64_t kMultiFrame =
    0x02; // third byte of a picture's type: panorama, disparity, multi-angle

constexpr std::array kHeicBrands{"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv, "hevx"sv};
constexpr std::array kAvifBrands{"avif"sv, "avis"sv};
constexpr std::array kHeifBrands{"mif1"sv, "msf1"sv, "mif2"sv};

// Returns the picture type of a brand; nullopt for brands of videos and of mere rules.
std::optional<PictureType> typeOfBrand(std::string_view brand) {
  const auto isOneOf = [brand](const auto &brands) {
    return std::ranges::find(brands, brand) != brands.end();
  };
  if (isOneOf(kHeicBrands))
    return PictureType::heic;
  if (isOneOf(kAvifBrands))
    return PictureType::avif;
  if (isOneOf(kHeifBrands))
    return PictureType::heif;
  return std::nullopt;
}

// The major brand decides unless it is generic; then the first specific compatible brand does.
std::optional<PictureType> sniffBrands(std::string_view file) {
  const auto size = readNumber(file, 0, 4);
  const auto major = slice(file, 8, 4);
  if (!size || !major)
    return std::nullopt;
  const auto type = typeOfBrand(*major);
  if (type != PictureType::heif)
    return type;
  const std::string_view box = file.substr(0, std::min<std::size_t>(*size, file.size()));
  for (std::size_t at = 16, i = 0; i < kMostBrands && at + 4 <= box.size(); at += 4, ++i)
    if (const auto finer = typeOfBrand(box.substr(at, 4)); finer && finer != PictureType::heif)
      return finer;
  return type;
}

// Returns how many pictures a multi-picture directory lists; 1 if none of them is a full picture beside
// others.
std::int64_t framesListed(std::string_view directory) {
  const auto layout = TiffLayout::of(directory);
  const auto first = layout ? layout->firstDirectory(directory) : std::nullopt;
  const TiffEntry *pictures = first ? first->find(kPictureEntries) : nullptr;
  const std::size_t count = pictures != nullptr ? pictures->valueBytes / kPictureEntryBytes : 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto attributes =
        readNumber(directory, pictures->valueAt + i * kPictureEntryBytes, 4, layout->order).value_or(0);
    if ((attributes >> 16 & 0xFF) == kMultiFrame)
      return static_cast<std::int64_t>(count);
  }
  return 1;
}

} // namespace

std::optional<PictureType> sniffType(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  if (file.starts_with("\xFF\xD8\xFF"sv))
    return PictureType::jpeg;
  if (file.starts_with("\x89PNG\r\n\x1A\n"sv))
    return PictureType::png;
  if (file.starts_with("GIF87a"sv) || file.starts_with("GIF89a"sv))
    return PictureType::gif;
  if (file.starts_with("RIFF"sv) && slice(file, 8, 4) == "WEBP"sv)
    return PictureType::webp;
  if (const auto layout = TiffLayout::of(file))
    return rawTypeOf(file, *layout).value_or(PictureType::tiff);
  return slice(file, 4, 4) == "ftyp"sv ? sniffBrands(file) : std::nullopt;
}

std::int64_t jpegFrames(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  std::int64_t frames = 1;
  for (const JpegSegment &segment : jpegSegments(file))
    if (const auto payload = segment.payload(file);
        segment.marker == kAPP2 && payload.starts_with(kMPFPrefix))
      frames = std::max(frames, framesListed(payload.substr(kMPFPrefix.size())));
  return frames;
}

std::int64_t apngFrames(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  std::optional<std::uint64_t> frames;
  std::int64_t stills = 1; // a still picture that is not one of the frames
  for (std::uint64_t at = 8;;) {
    const auto length = readNumber(file, at, 4);
    const auto type = slice(file, at + 4, 4);
    if (!length || !type || type == "IDAT"sv)
      return frames ? static_cast<std::int64_t>(*frames) + stills : 1;
    if (type == "acTL"sv)
      frames = readNumber(file, at + 8, 4);
    else if (type == "fcTL"sv)
      stills = 0;
    at += 12 + *length;
  }
}

} // namespace fennick::picture
