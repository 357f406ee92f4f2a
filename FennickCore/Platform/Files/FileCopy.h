#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <filesystem>

// Copies and comparisons of whole files, following no link. Any thread; each blocks for as long as the files
// take to read.
namespace fennick {

// Writes a new file `to` with the content of `from` and syncs it. Fails with EEXIST if `to` exists; on every
// other failure there is no `to`.
[[nodiscard]] IOResult<void> copyFile(FileSystem &files, const std::filesystem::path &from,
                                      const std::filesystem::path &to);

// Returns whether both are readable regular files with the same bytes.
[[nodiscard]] bool haveSameContent(const std::filesystem::path &one, const std::filesystem::path &other);

} // namespace fennick
