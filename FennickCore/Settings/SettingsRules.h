#pragma once

#include "FennickCore/Storage/NamingPolicy.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// What users may enter into individual settings, in windows and on the command line. Stored records are read
// more leniently, and every stored value is used safely. Pure functions; any thread.
namespace fennick {

// A file name may have 255 bytes; this leaves room for the number, the suffix of a duplicate and the
// extension.
inline constexpr std::size_t kLongestNameStart = 200; // bytes of prefix and separator together
inline constexpr std::int64_t kFewestDigits = 1;
inline constexpr std::int64_t kMostDigits = 9;

// Returns whether the text can be a prefix or separator: no "/" and no control characters.
[[nodiscard]] bool isNamePart(std::string_view text);
// Returns whether the text can be a prefix, and files with it would not be hidden.
[[nodiscard]] bool isNamePrefix(std::string_view text);
[[nodiscard]] bool fitsTogether(const PrefixSequenceNaming &naming);

// Returns whether the text can be a session's folder name: not hidden, not reserved, no control characters.
[[nodiscard]] bool isSessionName(std::string_view name);
// Returns whether the name belongs to a folder inside the save folder that is never a session's.
[[nodiscard]] bool isReservedFolderName(std::string_view name);

// Returns whether the text is a relative path inside the save folder, without ".." and control characters.
[[nodiscard]] bool isGalleryPath(std::string_view path);

} // namespace fennick
