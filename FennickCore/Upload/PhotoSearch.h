#pragma once

#include "FennickCore/Upload/PendingRecord.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace fennick {

// Returns the identity of the photo under this path, or nullopt if there is none. Links do not count.
[[nodiscard]] std::optional<PhotoIdentity> photoAt(const std::filesystem::path &file);

// Searches a save folder and its folders for photos that were renamed or moved. Returns a path or nullopt for
// each of `photos`. A file with another inode counts only if there is no better match, since FAT drives may
// renumber files at any time. Reads the status of every file; any thread.
[[nodiscard]] std::vector<std::optional<std::filesystem::path>>
findPhotos(const std::filesystem::path &saveFolder, const std::vector<PhotoIdentity> &photos);

} // namespace fennick
