#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <exiv2/exiv2.hpp>

// EXIF blocks that Exiv2 encodes anew, where the one at hand cannot be used as it stands. For this folder's
// own files: it shows Exiv2's types. May throw what Exiv2 throws.
namespace fennick::picture {

// Nothing for data without a single entry.
[[nodiscard]] std::optional<std::string> encodedExif(Exiv2::ExifData &data, Exiv2::ByteOrder order);

// Returns `block` without the maker's notes and the preview, or nullopt if it cannot be read.
[[nodiscard]] std::optional<std::string> exifWithoutNotes(std::string_view block);

} // namespace fennick::picture
