#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

// Copies photos for use elsewhere: smaller, in another format, without metadata. The originals are never
// changed. Any thread; calls are independent of each other and block.
namespace fennick::PhotoExport {

struct Exported {
  std::filesystem::path file{}; // the copy
  bool copied = false;          // byte for byte: nothing had to change, or nothing could
  bool keepsMetadata = false;   // metadata was to be removed, but this kind of file cannot be rewritten
  bool withinMaxBytes = true;   // false: larger than requested even at the smallest size
};

// Writes a copy of `source` into `folder`, which is created if it is missing, under the same name with the
// extension of the new format; a taken name gets "_2", "_3", …. The picture is processed by ImagePipeline
// like received ones; what that does not process (animations, several pages, raw pictures, videos) is copied
// unchanged. `keepOriginal` has no effect. The copy has the original's time and is synced; on failure nothing
// remains. `timeout` limits the work on the picture.
[[nodiscard]] std::expected<Exported, ImagePipeline::Failure>
exportFile(const std::filesystem::path &source, const std::filesystem::path &folder,
           const ImagingOptions &options, Seconds timeout, const ImagePipeline::Services &services);

// What the export of `source` would be, determined from the picture's facts alone.
struct Outlook {
  std::string name{};                        // of the copy, if nobody has it yet
  bool copied = false;                       // byte for byte
  std::optional<std::int64_t> longEdge{};    // of the picture as it is, in pixels; absent for videos
  std::optional<std::int64_t> newLongEdge{}; // of the copy; a size limit may reduce it further
  std::int64_t bytes = 0;                    // of the file as it is
};
[[nodiscard]] std::expected<Outlook, ImagePipeline::Failure>
outlook(const std::filesystem::path &source, const ImagingOptions &options, PictureDecoder &decoder);

} // namespace fennick::PhotoExport
