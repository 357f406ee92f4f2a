#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <exiv2/exiv2.hpp>

// EXIF blocks that Exiv2 encodes again if the existing one cannot be used. For this folder only, since it
// uses Exiv2's types. May throw Exiv2's exceptions.
namespace fennick::picture {

// Returns nullopt for data without any entry.
[[nodiscard]] std::optional<std::string> encodedExif(Exiv2::ExifData &data, Exiv2::ByteOrder order);

// Returns `block` without the maker's notes and the preview, or nullopt if it cannot be read.
[[nodiscard]] std::optional<std::string> exifWithoutNotes(std::string_view block);

} // namespace fennick::picture
