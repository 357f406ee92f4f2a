#pragma once

#include "FennickCore/Imaging/Picture/Containers.h"

#include <string>
#include <string_view>

// The texts of PNG files. Pure functions; any thread.
namespace fennick::picture {

inline constexpr std::string_view kPngXMP = "XML:com.adobe.xmp";
inline constexpr std::string_view kPngLegacyProfile = "Raw profile type ";

[[nodiscard]] bool isPngText(const Chunk &chunk);
// What a text chunk, or one like it, begins with.
[[nodiscard]] std::string_view pngKeyword(const Chunk &chunk, std::string_view file);
// The text behind the keyword, unpacked; empty for a chunk that is damaged, too large or no text.
[[nodiscard]] std::string pngText(const Chunk &chunk, std::string_view file, Unpacker &unpack);
// The bytes of an older program's profile: a name, a length and hexadecimal digits, a line each.
[[nodiscard]] std::string pngLegacyProfile(std::string_view text);

} // namespace fennick::picture
