#pragma once

#include "FennickCore/Imaging/Picture/Containers.h"

#include <string>
#include <string_view>

// The texts of PNG files. Pure functions; any thread.
namespace fennick::picture {

inline constexpr std::string_view kPngXMP = "XML:com.adobe.xmp";
inline constexpr std::string_view kPngLegacyProfile = "Raw profile type ";

[[nodiscard]] bool isPngText(const Chunk &chunk);
// Returns the keyword at the beginning of a text chunk or similar chunk.
[[nodiscard]] std::string_view pngKeyword(const Chunk &chunk, std::string_view file);
// Returns the decompressed text after the keyword; empty if the chunk is damaged, too large or not a text.
[[nodiscard]] std::string pngText(const Chunk &chunk, std::string_view file, Unpacker &unpack);
// Returns the bytes of an older program's profile: a name, a length and hexadecimal digits on separate lines.
[[nodiscard]] std::string pngLegacyProfile(std::string_view text);

} // namespace fennick::picture
