#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

// Extended attributes: values that the file system keeps beside a file's content. They stay with the file
// when it is renamed or moved within its volume, and most copies lose them. Links are not followed. Many file
// systems have none (ENOTSUP). Any thread.
namespace fennick {

// Bytes; the kernel accepts no longer value.
inline constexpr std::size_t kMostAttributeBytes = 65'536;

// Returns the value of an attribute such as "user.fennick.origin", or ENODATA if the file does not have it.
[[nodiscard]] IOResult<std::string> fileAttribute(const std::filesystem::path &file, const char *name);
// Sets the attribute, replacing an earlier value.
[[nodiscard]] IOResult<void> setFileAttribute(const std::filesystem::path &file, const char *name,
                                              std::string_view value);

// Copies the attributes of users and their programs ("user.") from one file to another, as far as both file
// systems support them. For a file that replaces another.
void copyUserAttributes(const std::filesystem::path &from, const std::filesystem::path &to);

} // namespace fennick
