#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/ProcessingPlan.h"
#include "FennickCore/Platform/Files/FileStatus.h"

#include <cstdint>
#include <filesystem>
#include <optional>

// What happens to a received file after processing. Any thread.
namespace fennick::ImagePipeline {

enum class OriginalFate : std::uint8_t {
  remove,
  trash, // moved to the trash, or into "originals" if there is no trash or it refuses
  keep,  // moved into "originals"
};

[[nodiscard]] OriginalFate fateOf(const ImagingOptions &options, FormatChoice choice);

struct Original {
  OriginalFate fate = OriginalFate::remove; // what was actually done
  std::filesystem::path file{};             // in "originals"; empty for the other fates
};

// Applies `fate` to `source` after its encoding was placed under another name. On failure it is unchanged.
[[nodiscard]] IOResult<Original> disposeOfOriginal(const std::filesystem::path &source, OriginalFate fate,
                                                   const Services &services);

// A second copy of an original that is about to be replaced under its own name.
struct KeptCopy {
  std::filesystem::path file{}; // in "originals"
  bool isNew = false;           // false: an interrupted attempt had left it there already
};

// Gives `source` a second name in "originals", or a copy on file systems without hard links, and syncs it.
// The copy is written in `workFolder` and gets its name when it is complete. On failure nothing remains.
[[nodiscard]] IOResult<KeptCopy> keepCopy(const std::filesystem::path &source, const FileStatus &status,
                                          const std::filesystem::path &workFolder, FileSystem &files);

} // namespace fennick::ImagePipeline
