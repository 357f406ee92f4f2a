#pragma once

#include "FennickCore/Upload/PendingRecord.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace fennick {

// The photo under this path; nullopt if there is none. A link is none.
[[nodiscard]] std::optional<PhotoIdentity> photoAt(const std::filesystem::path &file);

// Looks through a save folder, and the folders in it that photos are looked for in, for photos that were
// renamed or moved: a path or nullopt for each of `photos`. A file with another inode counts where there is
// no better one: FAT drives number their files anew at any time. Looks at every file; any thread.
[[nodiscard]] std::vector<std::optional<std::filesystem::path>>
findPhotos(const std::filesystem::path &saveFolder, const std::vector<PhotoIdentity> &photos);

} // namespace fennick
