#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

// What processing does to one photo, to illustrate the options. Values and functions; any thread.
namespace quarrow::PhotoExample {

struct Size {
  std::int64_t width = 0; // upright
  std::int64_t height = 0;
  std::int64_t bytes = 0;

  bool operator==(const Size &) const = default;
};

struct Example {
  std::string name{}; // of the photo; empty for the typical one
  Size before;
  std::optional<Size> after{}; // absent: the photo stays unchanged, or could not be encoded
  bool estimated = true;       // `after.bytes` was reckoned, not measured
  bool fits = true;            // false: even the smallest is over `maxBytes`
  std::string extension{};     // of the result; empty while the name stays

  bool operator==(const Example &) const = default;
};

// Estimates the result for a phone's photo of 12 megapixels from what encoders usually need per pixel;
// accurate to about a third.
[[nodiscard]] Example ofTypicalPhoto(const fennick::ImagingOptions &options, bool canEncodeHEIC);

// Encodes `file` without storing the result. Returns nullopt if it is not a readable picture. Blocks, for
// seconds if the result has a size limit.
[[nodiscard]] std::optional<Example> ofPhoto(const std::filesystem::path &file,
                                             const fennick::ImagingOptions &options,
                                             fennick::PictureDecoder &decoder);

} // namespace quarrow::PhotoExample
