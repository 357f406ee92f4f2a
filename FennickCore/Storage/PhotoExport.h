#pragma once

#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>

// Copies of photos for somewhere else: smaller, in another format, without metadata. The originals are never
// touched. Any thread; calls are independent of each other and block.
namespace fennick::PhotoExport {

struct Exported {
  std::filesystem::path file{}; // the copy
  bool copied = false;          // byte for byte: nothing had to change, or nothing could
  bool keepsMetadata = false; // metadata was to be left out, and this kind of file cannot be written without
  bool withinMaxBytes = true; // false: as small as it gets, and still larger than wanted
};

// Writes a copy of `source` into `folder`, which is made if need be, under the same name with the extension
// of the new format; "_2", "_3", … follow a name that is taken. The picture is made as ImagePipeline makes
// received ones; what that leaves alone (animations, several pages, raw pictures, videos) is copied as it is.
// `keepOriginal` means nothing here. The copy has the original's time and is on the disk; on failure nothing
// is left behind. `timeout` bounds the work on the picture.
[[nodiscard]] std::expected<Exported, ImagePipeline::Failure>
exportFile(const std::filesystem::path &source, const std::filesystem::path &folder,
           const ImagingOptions &options, Seconds timeout, const ImagePipeline::Services &services);

// What the export of `source` would be, from the picture's facts alone.
struct Outlook {
  std::string name{};                        // of the copy, if nobody has it yet
  bool copied = false;                       // byte for byte
  std::optional<std::int64_t> longEdge{};    // of the picture as it is, in pixels; absent for videos
  std::optional<std::int64_t> newLongEdge{}; // of the copy; a size limit may make it still smaller
  std::int64_t bytes = 0;                    // of the file as it is
};
[[nodiscard]] std::expected<Outlook, ImagePipeline::Failure>
outlook(const std::filesystem::path &source, const ImagingOptions &options, PictureDecoder &decoder);

} // namespace fennick::PhotoExport
