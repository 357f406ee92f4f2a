#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

// What the file system keeps beside a file's content: its extended attributes. They stay with the file when
// it is renamed or moved on its volume, and are lost in most copies. Following no link; any thread. Many file
// systems have none (ENOTSUP).
namespace fennick {

// No value is longer; the kernel allows no more either.
inline constexpr std::size_t kMostAttributeBytes = 65'536;

// The value under a name such as "user.fennick.origin"; ENODATA when the file has none of that name.
[[nodiscard]] IOResult<std::string> fileAttribute(const std::filesystem::path &file, const char *name);
// In the place of the value there was.
[[nodiscard]] IOResult<void> setFileAttribute(const std::filesystem::path &file, const char *name,
                                              std::string_view value);

// Gives `to` the attributes of `from` that belong to users and their programs ("user."), as far as both file
// systems have them: for a file that is to take another's place.
void copyUserAttributes(const std::filesystem::path &from, const std::filesystem::path &to);

} // namespace fennick
