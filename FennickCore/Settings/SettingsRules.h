#pragma once

#include "FennickCore/Storage/NamingPolicy.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// What people may enter into single settings, wherever they enter it. Stored records are read with more
// patience, and whatever is stored is used safely. Pure functions; any thread.
namespace fennick {

// A file name may have 255 bytes; this leaves room for the number, a duplicate's suffix and the extension.
inline constexpr std::size_t kLongestNameStart = 200; // bytes of prefix and separator together
inline constexpr std::int64_t kFewestDigits = 1;
inline constexpr std::int64_t kMostDigits = 9;

// A prefix or a separator: no "/" and no control characters.
[[nodiscard]] bool isNamePart(std::string_view text);
// The same, and files named so would not be hidden.
[[nodiscard]] bool isNamePrefix(std::string_view text);
[[nodiscard]] bool fitsTogether(const PrefixSequenceNaming &naming);

// One folder name for a session: not hidden, not reserved, no control characters.
[[nodiscard]] bool isSessionName(std::string_view name);
// Folders inside the save folder that are never a session's.
[[nodiscard]] bool isReservedFolderName(std::string_view name);

// A relative path inside the save folder, without ".." and control characters.
[[nodiscard]] bool isGalleryPath(std::string_view path);

} // namespace fennick
