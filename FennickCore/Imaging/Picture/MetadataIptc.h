#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// IPTC data sets, and Photoshop's resources around them. Pure functions; any thread.
namespace fennick::picture {

inline constexpr std::uint16_t kIptcResource = 0x0404;

struct PhotoshopResource {
  std::uint16_t kind = 0;
  std::string_view data; // borrowed
};
// Ends at the first resource that is not whole.
[[nodiscard]] std::vector<PhotoshopResource> photoshopResources(std::string_view block);
// The data sets inside a run of Photoshop resources; empty: none.
[[nodiscard]] std::string iptcOfPhotoshop(std::string_view block);
// A Photoshop resource that holds the data sets and nothing else.
[[nodiscard]] std::string photoshopOfIptc(std::string_view iptc);

// Whether a data set names a place: content location, city, sublocation, state, country.
[[nodiscard]] bool iptcHasLocation(std::string_view iptc);
// Without those, and without what cannot be read.
[[nodiscard]] std::string iptcWithoutLocation(std::string_view iptc);

} // namespace fennick::picture
