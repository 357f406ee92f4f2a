#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <filesystem>
#include <string_view>

namespace fennick {

enum class Durability { onDisk, asTheSystemLikes };

// A new file with all of `content`, to be moved over another one afterwards; on failure there is none.
[[nodiscard]] IOResult<void> writeAside(FileSystem &files, const std::filesystem::path &file,
                                        std::string_view content, Durability durability);

} // namespace fennick
