#include "FennickCore/Imaging/Picture/LocationScan.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/EmbeddedVideo.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

// Long enough not to occur by chance in compressed data, ignoring case: property names of XMP and JSON, keys
// of QuickTime, the country code in Samsung's trailer.
constexpr std::array kWords{"latitude"sv,        "longitude"sv,         "location"sv,    "photoshop:city"sv,
                            "photoshop:state"sv, "photoshop:country"sv, "countrycode"sv, "mcc_data"sv};
// The position atoms of QuickTime and MP4.
constexpr std::array kAtoms{"\xA9xyz"sv, "loci"sv};
// In data up to this size, short words such as "gps" are searched as well, within texts: three letters occur
// by chance in a few per cent of gain maps.
constexpr std::size_t kMostText = 65'536;
constexpr std::ptrdiff_t kShortestText = 12;
constexpr std::size_t kMostExifBlock = 65'536;
constexpr std::size_t kWindow = 1'048'576;
constexpr std::size_t kLongestWord = 32;
constexpr int kMostVideos = 16;
constexpr int kMostBlocks = 256; // of one kind in one file, to limit the time

bool holdsWord(std::string_view window) {
  std::string lower(window);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  const auto isIn = [](std::string_view text) {
    return [text](std::string_view word) { return text.find(word) != std::string_view::npos; };
  };
  return std::ranges::any_of(kWords, isIn(lower)) || std::ranges::any_of(kAtoms, isIn(window));
}

bool isPrintable(char c) { return c >= ' ' && c <= '~'; }
// Texts of all character sets contain no control characters except line ends and the final NUL.
bool isBinary(unsigned char c) { return c < ' ' && c != '\t' && c != '\n' && c != '\r' && c != '\0'; }

// Returns whether the bytes, or a text among them, contain a word.
bool holdsShortWord(std::string_view bytes) {
  if (!xmpMayHaveLocation(bytes))
    return false;
  if (std::ranges::none_of(bytes, isBinary))
    return true;
  for (auto start = bytes.begin(); start != bytes.end();) {
    const auto *const end = std::find_if_not(start, bytes.end(), isPrintable);
    if (end - start >= kShortestText && xmpMayHaveLocation(std::string_view(start, end)))
      return true;
    start = end == bytes.end() ? end : end + 1;
  }
  return false;
}

bool holdsWords(std::string_view bytes) {
  if (bytes.size() <= kMostText && holdsShortWord(bytes))
    return true;
  for (std::size_t at = 0; at < bytes.size(); at += kWindow)
    if (holdsWord(bytes.substr(at, kWindow + kLongestWord)))
      return true;
  return false;
}

bool isExifWithGPS(std::string_view bytes) {
  const auto exif = ExifBlock::parse(bytes.substr(0, kMostExifBlock));
  return exif && exif->hasGPS();
}

bool isIptcWithPlace(std::string_view bytes) {
  return iptcHasLocation(iptcOfPhotoshop(bytes.substr(0, kMostExifBlock)));
}

// Returns whether `test` holds for what follows one of the occurrences of `mark`.
bool holdsBehind(std::string_view bytes, std::string_view mark, bool (*test)(std::string_view)) {
  int blocks = 0;
  for (auto at = bytes.find(mark); at != std::string_view::npos; at = bytes.find(mark, at + 1))
    if (++blocks > kMostBlocks || test(bytes.substr(at + mark.size())))
      return true;
  return false;
}

} // namespace

bool bytesMayHaveLocation(std::string_view bytes) {
  return holdsWords(bytes) || isExifWithGPS(bytes) || isIptcWithPlace(bytes) ||
         holdsBehind(bytes, kExifPrefix, isExifWithGPS) || holdsBehind(bytes, "eXIf"sv, isExifWithGPS) ||
         holdsBehind(bytes, "Photoshop 3.0\0"sv, isIptcWithPlace);
}

bool trailerMayHaveLocation(std::string_view trailer) {
  std::size_t at = 0;
  int videos = 0;
  while (const auto video = findVideo(trailer, at)) {
    if (++videos > kMostVideos || bytesMayHaveLocation(trailer.substr(at, video->at - at)) ||
        videoMayHaveLocation(trailer.substr(video->at, video->length)))
      return true;
    at = video->at + video->length;
  }
  return bytesMayHaveLocation(trailer.substr(at));
}

} // namespace fennick::picture
