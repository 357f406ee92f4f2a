#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

namespace fennick {

// Calls `move` with the name in `folder`, then with "_2", "_3", … before its extension, until it does not
// fail with EEXIST. Returns the path that succeeded, or EEXIST after ten thousand names. Any thread.
template <typename Move>
[[nodiscard]] IOResult<std::filesystem::path> underFreeName(const std::filesystem::path &folder,
                                                            const std::filesystem::path &name, Move move) {
  constexpr int kMostNames = 10'000;
  std::filesystem::path target = folder / name;
  for (int variant = 2; variant < kMostNames; ++variant) {
    const IOResult<void> moved = move(target);
    if (moved)
      return target;
    if (moved.error() != std::errc::file_exists)
      return std::unexpected(moved.error());
    target = folder / fmt::format("{}_{}{}", name.stem().string(), variant, name.extension().string());
  }
  return std::unexpected(std::make_error_code(std::errc::file_exists));
}

} // namespace fennick
