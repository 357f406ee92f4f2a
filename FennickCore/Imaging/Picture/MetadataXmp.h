#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// XMP packets, read and written by Exiv2. Pure functions; one thread at a time.
namespace fennick::picture {

// Returns whether a property contains a position or names a place: GPS, locations, city, state, country.
[[nodiscard]] bool xmpHasLocation(std::string_view packet);
// Does the same for Exiv2's name of a property.
[[nodiscard]] bool xmpKeyNamesPlace(std::string_view key);
// Does the same by keywords alone, for text that is not a complete packet.
[[nodiscard]] bool xmpMayHaveLocation(std::string_view text);

// The bytes that follow the main picture in its file; 0: none.
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
  CompanionLengths companions{}; // of the file that will contain the packet
};
// Returns the packet for an upright picture of these dimensions: without previews, references to extended
// parts, and statements about missing videos and gain maps. Returns the packet itself if nothing has to
// change, or if it cannot be read and location may stay; otherwise an empty text.
[[nodiscard]] std::string preparedXmp(std::string_view packet, const XmpChange &change);

// Returns the same properties in as few bytes as possible, or nullopt if the packet cannot be read.
[[nodiscard]] std::optional<std::string> compactXmp(std::string_view packet);

// Overwrites the digit of tiff:Orientation wherever the packet in `file` from `at` on states it; nothing
// moves.
void setXmpOrientation(std::string &file, std::size_t at, std::size_t length, std::int64_t orientation);

// Returns the packet, which may be empty, with the properties that IPTC data sets stand for, or the packet
// itself if they cannot be read.
[[nodiscard]] std::string xmpWithIptc(std::string_view packet, std::string_view iptc);

} // namespace fennick::picture
