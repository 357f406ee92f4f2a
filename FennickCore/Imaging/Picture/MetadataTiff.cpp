#include "FennickCore/Imaging/Picture/MetadataTiff.h"

#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Imaging/Picture/Exiv2Versions.h"
#include "FennickCore/Imaging/Picture/MetadataExif.h"
#include "FennickCore/Imaging/Picture/MetadataExiv2.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"

#include <array>
#include <string>
#include <string_view>

namespace fennick::picture {

namespace {

constexpr std::uint16_t kXMP = 0x02BC;
constexpr std::uint16_t kIPTC = 0x83BB;
constexpr std::uint16_t kPhotoshop = 0x8649;
constexpr std::uint16_t kICC = 0x8773;

std::string valueOf(std::string_view file, const TiffDirectory &directory, std::uint16_t tag) {
  const TiffEntry *entry = directory.find(tag);
  return (entry != nullptr) ? std::string(file.substr(entry->valueAt, entry->valueBytes)) : std::string();
}

// Blocks that are kept separately from EXIF, and tags that only apply to the pixels of this file.
bool isForThisFile(const Exiv2::Exifdatum &datum) {
  const std::string group = datum.groupName();
  if (group != "Image")
    return group.starts_with("SubImage") || group.starts_with("SubThumb") || group.starts_with("Image") ||
           group == "Thumbnail" || group == "PanaRaw";
  const std::uint16_t tag = datum.tag();
  return isStructuralTag(tag) || tag == kXMP || tag == kIPTC || tag == kPhotoshop;
}

std::string exifOf(Bytes file) {
  const auto block = guarded([&]() -> std::optional<std::string> {
    const auto image = openedImage(file);
    Exiv2::ExifData &data = image->exifData();
    for (auto datum = data.begin(); datum != data.end();)
      datum = isForThisFile(*datum) ? data.erase(datum) : std::next(datum);
    return encodedExif(data, image->byteOrder());
  });
  return block.value_or("");
}

} // namespace

Metadata readTiff(Bytes bytes) {
  const std::string_view file = textOf(bytes);
  const auto layout = TiffLayout::of(file);
  const auto first = layout ? layout->firstDirectory(file) : std::nullopt;
  if (!first)
    return {};
  Metadata found{.exif = exifOf(bytes),
                 .xmp = valueOf(file, *first, kXMP),
                 .iptc = valueOf(file, *first, kIPTC),
                 .icc = valueOf(file, *first, kICC)};
  if (found.iptc.empty())
    found.iptc = iptcOfPhotoshop(valueOf(file, *first, kPhotoshop));
  return found;
}

} // namespace fennick::picture
