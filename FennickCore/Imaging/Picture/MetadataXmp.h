#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// XMP packets, read and written by Exiv2. Pure functions; one thread at a time.
namespace fennick::picture {

// Whether a property gives a position or names a place: GPS, locations, city, state, country.
[[nodiscard]] bool xmpHasLocation(std::string_view packet);
// The same for the name that Exiv2 gives a property.
[[nodiscard]] bool xmpKeyNamesPlace(std::string_view key);
// The same by words alone, for text that is no whole packet.
[[nodiscard]] bool xmpMayHaveLocation(std::string_view text);

// What follows the main picture in its file, in bytes; 0: there is none.
struct CompanionLengths {
  std::size_t gainMap = 0;
  std::size_t gap = 0;   // between what precedes the video and the video
  std::size_t video = 0; // from its start to the end of the file

  bool operator==(const CompanionLengths &) const = default;
};

struct XmpChange {
  std::int64_t width = 0;
  std::int64_t height = 0;
  bool stripLocation = false;
  CompanionLengths companions{}; // of the file that the packet is written into
};
// For an upright picture of these dimensions: without previews, references to extended parts, and claims
// about videos and gain maps that are not there. Returns the packet itself if nothing has to change, or if it
// cannot be read and location may stay; otherwise an empty text.
[[nodiscard]] std::string preparedXmp(std::string_view packet, const XmpChange &change);

// Returns the same properties in as few bytes as possible, or nullopt if the packet cannot be read.
[[nodiscard]] std::optional<std::string> compactXmp(std::string_view packet);

// Overwrites the digit of tiff:Orientation wherever the packet in `file` from `at` on states it; nothing
// moves.
void setXmpOrientation(std::string &file, std::size_t at, std::size_t length, std::int64_t orientation);

// The packet, which may be empty, with the properties that IPTC data sets stand for. The packet itself when
// they cannot be read.
[[nodiscard]] std::string xmpWithIptc(std::string_view packet, std::string_view iptc);

} // namespace fennick::picture
