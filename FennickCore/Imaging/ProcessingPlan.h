#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

// What has to be done with a received picture, decided from its facts. Pure functions; any thread.
namespace fennick::ImagePipeline {

// Nothing: the file stays as it is, and this is what the person is told.
struct LeaveAlone {
  std::string note;
};

// A new encoding.
struct Encode {
  RenderRequest request;
  bool turns = false;                 // the stored picture does not stand upright
  std::vector<std::string> remarks{}; // on the choice of the format
};

// The size cannot be read.
struct Undecodable {};

using Plan = std::variant<LeaveAlone, Encode, Undecodable>;

// `bytes` is the file's size. `canEncodeHEIC` is asked only when it matters.
[[nodiscard]] Plan plan(const PictureFacts &facts, std::int64_t bytes, const ImagingOptions &options,
                        const std::function<bool()> &canEncodeHEIC);

// The note on a finished encoding.
[[nodiscard]] std::string noteOf(const Encode &encode, const Rendering &rendering);

} // namespace fennick::ImagePipeline
