#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Platform/Files/FileStatus.h"

#include <cstdint>
#include <filesystem>
#include <optional>

// What becomes of a received file that was processed. Any thread.
namespace fennick::ImagePipeline {

enum class OriginalFate : std::uint8_t {
  remove,
  trash, // moved to the Trash, or into "originals" where there is no Trash or it refuses
  keep,  // moved into "originals"
};

// `isUnasked`: the photo was converted to a format that the user did not choose.
[[nodiscard]] OriginalFate fateOf(const ImagingOptions &options, bool isUnasked);

struct Original {
  OriginalFate fate = OriginalFate::remove; // what was done in the end
  std::filesystem::path file{};             // in "originals"; empty for the other fates
};

// Does with `source` what `fate` says, after its encoding was placed under another name. On failure it is
// where it was.
[[nodiscard]] IOResult<Original> disposeOfOriginal(const std::filesystem::path &source, OriginalFate fate,
                                                   const Services &services);

// A second copy of an original that is about to be replaced under its own name.
struct KeptCopy {
  std::filesystem::path file{}; // in "originals"
  bool isNew = false;           // false: an interrupted attempt had left it there already
};

// Gives `source` a second name in "originals", or puts a copy there on file systems without hard links; on
// the disk when it returns. The copy is made in `workFolder` and takes its name when it is complete. On
// failure nothing is left behind.
[[nodiscard]] IOResult<KeptCopy> keepCopy(const std::filesystem::path &source, const FileStatus &status,
                                          const std::filesystem::path &workFolder, FileSystem &files);

} // namespace fennick::ImagePipeline
