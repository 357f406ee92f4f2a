#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <filesystem>
#include <string_view>

namespace fennick {

enum class Durability { onDisk, asTheSystemLikes };

// Creates and syncs a file with all of `content`, which the caller then moves over another one. Leaves no
// file on failure.
[[nodiscard]] IOResult<void> writeAside(FileSystem &files, const std::filesystem::path &file,
                                        std::string_view content, Durability durability);

} // namespace fennick
