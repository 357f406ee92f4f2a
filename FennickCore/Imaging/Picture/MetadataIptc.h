#pragma once

#include <string>
#include <string_view>

// IPTC data sets, and Photoshop's resources around them. Pure functions; any thread.
namespace fennick::picture {

// The data sets inside a run of Photoshop resources; empty: none.
[[nodiscard]] std::string iptcOfPhotoshop(std::string_view resources);
// A Photoshop resource that holds the data sets and nothing else.
[[nodiscard]] std::string photoshopOfIptc(std::string_view iptc);

// Whether a data set names a place: content location, city, sublocation, state, country.
[[nodiscard]] bool iptcHasLocation(std::string_view iptc);
// Without those, and without what cannot be read.
[[nodiscard]] std::string iptcWithoutLocation(std::string_view iptc);

} // namespace fennick::picture
