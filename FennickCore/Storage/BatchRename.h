#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Storage/PhotoFileOps.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

// Renames several photos together. Any thread; two operations on the same file at once may fail.
namespace fennick::PhotoFileOps {

struct Numbering {
  std::string prefix;
  std::int64_t digits = 3; // at least; clamped to 1 through 18
  std::int64_t start = 1;  // used clamped to 0 through 10^15
};

// Returns the names that `batchRename` would give now, in the order of the selection, including unchanged
// ones.
[[nodiscard]] Result<std::vector<Renaming>> numberedNames(std::span<const std::filesystem::path> selection,
                                                          const Numbering &numbering, FileSystem &files);

// Called with the progress of a batch, from 0 to 1, on the working thread. Returning false stops it.
using Proceed = std::function<bool(double share)>;

// Renames every file within its folder; files may exchange names. Either all are renamed, or the error tells
// how they are named: `system` with operation_canceled if `proceed` stopped it and every file has its old
// name. A program that is killed meanwhile leaves files named UUID-oldname.
[[nodiscard]] Result<void> renameAll(std::span<const Renaming> renamings, FileSystem &files,
                                     const Proceed &proceed = {});

// Numbers the files in their order; each stays in its folder and keeps its extension. Numbers of files
// outside the selection are skipped. Fails like `renameAll`. Returns the new path of each file.
[[nodiscard]] Result<std::vector<std::filesystem::path>>
batchRename(std::span<const std::filesystem::path> selection, const Numbering &numbering, FileSystem &files,
            const Proceed &proceed = {});

} // namespace fennick::PhotoFileOps
