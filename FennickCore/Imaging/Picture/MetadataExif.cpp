#include "FennickCore/Imaging/Picture/MetadataExif.h"

#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include <algorithm>
#include <array>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::array kCommonGroups{"Image"sv, "Photo"sv, "GPSInfo"sv, "Iop"sv};

bool isOfMaker(const Exiv2::Exifdatum &datum) {
  const std::string group = datum.groupName();
  return std::ranges::find(kCommonGroups, std::string_view(group)) == kCommonGroups.end() ||
         datum.key() == "Exif.Photo.MakerNote";
}

} // namespace

std::optional<std::string> encodedExif(Exiv2::ExifData &data, Exiv2::ByteOrder order) {
  if (data.empty())
    return std::nullopt;
  Exiv2::Blob blob;
  Exiv2::ExifParser::encode(blob, order == Exiv2::bigEndian ? order : Exiv2::littleEndian, data);
  return std::string(blob.begin(), blob.end());
}

std::optional<std::string> exifWithoutNotes(std::string_view block) {
  return guarded([&]() -> std::optional<std::string> {
    Exiv2::ExifData data;
    const auto order = Exiv2::ExifParser::decode(data, reinterpret_cast<const Exiv2::byte *>(block.data()),
                                                 static_cast<std::uint32_t>(block.size()));
    for (auto datum = data.begin(); datum != data.end();)
      datum = isOfMaker(*datum) ? data.erase(datum) : std::next(datum);
    return encodedExif(data, order);
  });
}

} // namespace fennick::picture
