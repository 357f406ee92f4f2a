#pragma once

#include <string_view>

// Searches bytes whose structure is unknown, or that other readers skip, for a position or the name of a
// place. In doubt it returns true: that costs a new encoding, while the opposite would leak a location. Pure
// functions; any thread.
namespace fennick::picture {

// Searches for the keywords of texts, XMP and videos, for EXIF blocks with GPS and for IPTC with places.
[[nodiscard]] bool bytesMayHaveLocation(std::string_view bytes);

// Does the same for what follows a picture in its file; videos in it are read by their structure.
[[nodiscard]] bool trailerMayHaveLocation(std::string_view trailer);

} // namespace fennick::picture
