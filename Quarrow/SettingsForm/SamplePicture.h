#pragma once

#include <filesystem>
#include <optional>

namespace quarrow {

// A small picture of our own, to try things with before there is a photo: made in `folder` unless it is
// there already. Returns nullopt if it cannot be written. Blocks; any thread.
[[nodiscard]] std::optional<std::filesystem::path> samplePicture(const std::filesystem::path &folder);

} // namespace quarrow
