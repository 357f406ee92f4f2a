#pragma once

#include <filesystem>
#include <optional>

namespace quarrow {

// A small picture of our own, to try things with before there is a photo: made in `folder` unless it lies
// there already. Nothing when it cannot be written. Blocks; any thread.
[[nodiscard]] std::optional<std::filesystem::path> samplePicture(const std::filesystem::path &folder);

} // namespace quarrow
