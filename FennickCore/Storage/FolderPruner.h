#pragma once

#include "FennickCore/Platform/Files/Trash.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

// Keeps a folder within the user's limit. Any thread.
namespace fennick::FolderPruner {

// Called before each file, on the calling thread. Returning false stops.
using Proceed = std::function<bool()>;

// Moves the oldest photos and videos directly in `folder` to the trash until `limit` of them are left, and
// returns the moved ones. Counts the same files as the folder limit. A file that the trash does not accept
// stays and is skipped, as is one that was changed or replaced since the folder was listed, so that no photo
// that arrives meanwhile is moved. A limit below 1 prunes nothing.
[[nodiscard]] std::vector<std::filesystem::path>
prune(const std::filesystem::path &folder, std::int64_t limit, Trash &trash, const Proceed &proceed = {});

} // namespace fennick::FolderPruner
