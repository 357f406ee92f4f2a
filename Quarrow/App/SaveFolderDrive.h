#pragma once

#include <filesystem>

// Whether the drive that the save folder lies on is plugged in. A mount point's folder stays when the drive
// goes; photos that were saved there would be out of sight as soon as it is back. Any thread.
namespace quarrow {

// The uppermost folder on the way to `folder` that lies on the same drive; where `folder` is not there, that
// of the last folder on the way that is.
[[nodiscard]] std::filesystem::path driveOf(const std::filesystem::path &folder);

// Whether the way to `folder` ends before it comes to `drive`, where it once led.
[[nodiscard]] bool isUnplugged(const std::filesystem::path &folder, const std::filesystem::path &drive);

} // namespace quarrow
