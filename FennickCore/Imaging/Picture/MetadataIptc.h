#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// IPTC data sets and the Photoshop resources that contain them. Pure functions; any thread.
namespace fennick::picture {

inline constexpr std::uint16_t kIptcResource = 0x0404;

struct PhotoshopResource {
  std::uint16_t kind = 0;
  std::string_view data; // borrowed
};
// Stops at the first incomplete resource.
[[nodiscard]] std::vector<PhotoshopResource> photoshopResources(std::string_view block);
// Returns the data sets inside a sequence of Photoshop resources; empty if there are none.
[[nodiscard]] std::string iptcOfPhotoshop(std::string_view block);
// Returns a Photoshop resource that contains only the data sets.
[[nodiscard]] std::string photoshopOfIptc(std::string_view iptc);

// Returns whether a data set names a place: content location, city, sublocation, state, country.
[[nodiscard]] bool iptcHasLocation(std::string_view iptc);
// Returns the data sets without those, and without what cannot be read.
[[nodiscard]] std::string iptcWithoutLocation(std::string_view iptc);

} // namespace fennick::picture
