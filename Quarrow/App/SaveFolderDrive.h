#pragma once

#include <filesystem>

// Tells whether the drive of the save folder is plugged in. The folder of a mount point remains when the
// drive is removed; photos saved there would be hidden once it is back. Any thread.
namespace quarrow {

// Returns the topmost folder on the path to `folder` that lies on the same drive; if `folder` does not exist,
// that of the last existing folder on the path.
[[nodiscard]] std::filesystem::path driveOf(const std::filesystem::path &folder);

// Returns whether the path to `folder` no longer leads through `drive`, as it did before.
[[nodiscard]] bool isUnplugged(const std::filesystem::path &folder, const std::filesystem::path &drive);

} // namespace quarrow
