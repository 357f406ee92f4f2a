#include "FennickCore/Upload/FileTypeSniffer.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Platform/Files/PathComponent.h"
#include "FennickCore/Support/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fennick::FileTypeSniffer {

using namespace std::string_view_literals;

namespace {

using Entry = std::pair<std::string_view, std::string_view>;

constexpr std::array kMediaTypes{Entry{"image/jpeg", "jpg"},
                                 Entry{"image/jpg", "jpg"},
                                 Entry{"image/pjpeg", "jpg"},
                                 Entry{"image/png", "png"},
                                 Entry{"image/heic", "heic"},
                                 Entry{"image/heif", "heic"},
                                 Entry{"image/heic-sequence", "heic"},
                                 Entry{"image/x-adobe-dng", "dng"},
                                 Entry{"image/dng", "dng"},
                                 Entry{"image/tiff", "tif"},
                                 Entry{"image/gif", "gif"},
                                 Entry{"image/webp", "webp"},
                                 Entry{"image/avif", "avif"},
                                 Entry{"video/quicktime", "mov"},
                                 Entry{"video/mp4", "mp4"},
                                 Entry{"video/x-m4v", "m4v"}};

// Major brands of the ISO base media format, in lower case.
constexpr std::array kBrands{
    Entry{"heic", "heic"}, Entry{"heix", "heic"}, Entry{"hevc", "heic"}, Entry{"hevx", "heic"},
    Entry{"mif1", "heic"}, Entry{"msf1", "heic"}, Entry{"heim", "heic"}, Entry{"heis", "heic"},
    Entry{"avif", "avif"}, Entry{"avis", "avif"}, Entry{"qt  ", "mov"},  Entry{"m4v ", "m4v"},
    Entry{"m4vh", "m4v"},  Entry{"m4vp", "m4v"},  Entry{"isom", "mp4"},  Entry{"iso2", "mp4"},
    Entry{"iso4", "mp4"},  Entry{"iso5", "mp4"},  Entry{"iso6", "mp4"},  Entry{"mp41", "mp4"},
    Entry{"mp42", "mp4"},  Entry{"mp71", "mp4"},  Entry{"avc1", "mp4"},  Entry{"3gp4", "mp4"},
    Entry{"3gp5", "mp4"},  Entry{"3gp6", "mp4"},  Entry{"dash", "mp4"},  Entry{"mmp4", "mp4"}};

template <std::size_t size>
std::optional<std::string> lookUp(const std::array<Entry, size> &table, std::string_view key) {
  const auto found = std::ranges::find(table, key, &Entry::first);
  if (found == table.end())
    return std::nullopt;
  return std::string(found->second);
}

} // namespace

std::optional<std::string> sniff(std::span<const std::byte> header) {
  const std::string_view text(reinterpret_cast<const char *>(header.data()),
                              std::min(header.size(), kHeaderBytes));
  if (text.size() < 4)
    return std::nullopt;
  if (text.starts_with("\xFF\xD8\xFF"sv))
    return "jpg";
  if (text.starts_with("GIF8"sv))
    return "gif";
  if (text.starts_with("\x89PNG"sv) && text.size() >= 8)
    return "png";
  if (text.starts_with("II*\0"sv) || text.starts_with("MM\0*"sv))
    return "tif";
  if (text.size() < 12)
    return std::nullopt;
  if (text.starts_with("RIFF"sv) && text.substr(8, 4) == "WEBP"sv)
    return "webp";
  if (text.substr(4, 4) != "ftyp"sv)
    return std::nullopt;
  return lookUp(kBrands, lowerCased(text.substr(8, 4)));
}

std::optional<std::string> extensionForMediaType(std::string_view mediaType) {
  return lookUp(kMediaTypes, mediaType);
}

std::optional<std::string> extensionForFilename(std::string_view filename) {
  std::string extension = lowerCasedExtension(filename);
  if (!isMediaExtension(extension))
    return std::nullopt;
  if (extension == "jpeg")
    return "jpg";
  return extension;
}

std::optional<std::string> resolve(std::span<const std::byte> header,
                                   const std::optional<std::string> &mediaType,
                                   const std::optional<std::string> &filename) {
  auto sniffed = sniff(header);
  if (sniffed != "tif")
    return sniffed;
  auto hint = mediaType ? extensionForMediaType(*mediaType) : std::nullopt;
  if (!hint && filename)
    hint = extensionForFilename(*filename);
  return hint == "dng" ? hint : sniffed;
}

} // namespace fennick::FileTypeSniffer
