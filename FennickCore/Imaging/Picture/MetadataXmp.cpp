#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include "FennickCore/Imaging/Picture/MetadataCompanions.h"
#include "FennickCore/Imaging/Picture/MetadataExiv2.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <optional>

#include <exiv2/exiv2.hpp>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

std::string lowerCased(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

// Words in property names of any namespace for a position or a place.
constexpr std::array kPlaceWords{"gps"sv, "latitude"sv, "longitude"sv, "location"sv};
// Properties of the IPTC and Photoshop schemas that name a place without such a word.
constexpr std::array kPlaceKeys{"xmp.iptc.countrycode"sv, "xmp.photoshop.city"sv, "xmp.photoshop.state"sv,
                                "xmp.photoshop.country"sv};

// Previews, and the pointer to a part that is not written again.
bool isStale(std::string_view key) {
  return key.starts_with("Xmp.xmp.Thumbnails"sv) || key == "Xmp.xmpNote.HasExtendedXMP"sv;
}

std::optional<Exiv2::XmpData> decoded(std::string_view packet) {
  return guarded([&]() -> std::optional<Exiv2::XmpData> {
    Exiv2::XmpData data;
    if (packet.empty() || Exiv2::XmpParser::decode(data, std::string(packet)) != 0)
      return std::nullopt;
    return data;
  });
}

std::optional<std::string> encoded(const Exiv2::XmpData &data) {
  return guarded([&]() -> std::optional<std::string> {
    constexpr std::uint16_t kForm = Exiv2::XmpParser::useCompactFormat | Exiv2::XmpParser::omitAllFormatting;
    constexpr std::uint32_t kPadding = 1; // 0 would mean 2 KB
    std::string packet;
    if (Exiv2::XmpParser::encode(packet, data, kForm, kPadding) != 0)
      return std::nullopt;
    return packet;
  });
}

bool eraseWhere(Exiv2::XmpData &data, const std::function<bool(std::string_view)> &isUnwanted) {
  bool changed = false;
  for (auto datum = data.begin(); datum != data.end();) {
    const bool erased = isUnwanted(datum->key());
    datum = erased ? data.erase(datum) : std::next(datum);
    changed |= erased;
  }
  return changed;
}

// Corrects the property if the packet has it with another value.
bool correct(Exiv2::XmpData &data, const char *key, std::int64_t value) {
  const auto datum = data.findKey(Exiv2::XmpKey(key));
  const std::string text = std::to_string(value);
  if (datum == data.end() || datum->toString() == text)
    return false;
  datum->setValue(text);
  return true;
}

bool bringUpToDate(Exiv2::XmpData &data, const XmpChange &change) {
  bool changed = eraseWhere(data, isStale);
  if (change.stripLocation)
    changed |= eraseWhere(data, xmpKeyNamesPlace);
  changed |= stateCompanions(data, change.companions);
  changed |= correct(data, "Xmp.tiff.Orientation", 1);
  for (const char *key : {"Xmp.tiff.ImageWidth", "Xmp.exif.PixelXDimension"})
    changed |= correct(data, key, change.width);
  for (const char *key : {"Xmp.tiff.ImageLength", "Xmp.exif.PixelYDimension"})
    changed |= correct(data, key, change.height);
  return changed;
}

} // namespace

bool xmpKeyNamesPlace(std::string_view key) {
  const std::string lower = lowerCased(key);
  const auto holds = [&lower](std::string_view word) { return lower.find(word) != std::string::npos; };
  return std::ranges::any_of(kPlaceWords, holds) ||
         std::ranges::find(kPlaceKeys, std::string_view(lower)) != kPlaceKeys.end();
}

bool xmpHasLocation(std::string_view packet) {
  const auto data = decoded(packet);
  if (!data)
    return xmpMayHaveLocation(packet);
  return std::any_of(data->begin(), data->end(),
                     [](const auto &datum) { return xmpKeyNamesPlace(datum.key()); });
}

bool xmpMayHaveLocation(std::string_view text) {
  const std::string lower = lowerCased(text);
  const auto holds = [&lower](std::string_view word) { return lower.find(word) != std::string::npos; };
  return std::ranges::any_of(kPlaceWords, holds);
}

std::string preparedXmp(std::string_view packet, const XmpChange &change) {
  auto data = decoded(packet);
  if (!data)
    return change.stripLocation ? std::string() : std::string(packet);
  const auto changed = guarded([&] { return std::optional(bringUpToDate(*data, change)); });
  if (changed == false)
    return std::string(packet);
  return changed ? encoded(*data).value_or("") : "";
}

std::optional<std::string> compactXmp(std::string_view packet) {
  const auto data = decoded(packet);
  return data ? encoded(*data) : std::nullopt;
}

void setXmpOrientation(std::string &file, std::size_t at, std::size_t length, std::int64_t orientation) {
  constexpr std::string_view kName = "tiff:Orientation";
  const auto packet = std::string_view(file).substr(0, at + length);
  for (auto found = packet.find(kName, at); found != std::string_view::npos;
       found = packet.find(kName, found + 1)) {
    const std::size_t digit = found + kName.size();
    const std::string_view around = packet.substr(digit);
    // ="6", ='6' or >6<
    const std::size_t skipped = around.starts_with('=') ? 2 : 1;
    if (around.size() <= skipped + 1)
      continue;
    const std::string_view marks = "\"'><";
    const bool isDelimited = marks.find(around[skipped - 1]) != std::string_view::npos &&
                             marks.find(around[skipped + 1]) != std::string_view::npos;
    if (isDelimited && around[skipped] >= '0' && around[skipped] <= '9')
      file[digit + skipped] = static_cast<char>('0' + orientation);
  }
}

std::string xmpWithIptc(std::string_view packet, std::string_view iptc) {
  const auto merged = guarded([&]() -> std::optional<std::string> {
    Exiv2::IptcData sets;
    const auto *bytes = reinterpret_cast<const Exiv2::byte *>(iptc.data());
    if (Exiv2::IptcParser::decode(sets, bytes, static_cast<std::uint32_t>(iptc.size())) != 0)
      return std::nullopt;
    Exiv2::XmpData data = decoded(packet).value_or(Exiv2::XmpData());
    Exiv2::copyIptcToXmp(sets, data);
    return encoded(data);
  });
  return merged.value_or(std::string(packet));
}

} // namespace fennick::picture
