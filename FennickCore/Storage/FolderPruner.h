#pragma once

#include "FennickCore/Platform/Trash.h"

#include <cstdint>
#include <filesystem>
#include <vector>

// Keeps a folder under the person's limit. Any thread.
namespace fennick::FolderPruner {

// Moves the oldest photos and videos directly in `folder` to the trash until `limit` are left, and gives
// those that went. What is counted is what the folder limit counts; a file that the trash does not take stays
// and is passed over. A limit below 1 prunes nothing.
[[nodiscard]] std::vector<std::filesystem::path> prune(const std::filesystem::path &folder,
                                                       std::int64_t limit, Trash &trash);

} // namespace fennick::FolderPruner
