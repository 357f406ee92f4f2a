#pragma once

#include <filesystem>
#include <optional>

namespace quarrow {

// Creates a small sample picture in `folder` unless it exists already, to try actions with before there is a
// photo. Returns nullopt if it cannot be written. Blocks; any thread.
[[nodiscard]] std::optional<std::filesystem::path> samplePicture(const std::filesystem::path &folder);

} // namespace quarrow
