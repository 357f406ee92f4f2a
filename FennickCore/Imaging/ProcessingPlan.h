#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// What has to be done with a received picture, decided from its facts. Pure functions; any thread.
namespace fennick::ImagePipeline {

// Nothing: the file stays as it is, and this is what the user is told.
struct LeaveAlone {
  std::string note;
};

// A new encoding.
struct Encode {
  RenderRequest request;
  bool turns = false;                 // the stored picture does not stand upright
  std::vector<std::string> remarks{}; // on the choice of the format
  bool isUnasked = false;             // converts to a format that the user did not choose
};

// The size cannot be read.
struct Undecodable {};

using Plan = std::variant<LeaveAlone, Encode, Undecodable>;

// `bytes` is the file's size. `canEncodeHEIC` is asked only when it matters.
[[nodiscard]] Plan plan(const PictureFacts &facts, std::int64_t bytes, const ImagingOptions &options,
                        const std::function<bool()> &canEncodeHEIC);

// Whether a picture of type `source` that is written as `output` gets a format that the user, who chose
// `format`, did not ask for: a WebP that becomes a JPEG because no format was chosen, or because this
// computer cannot write the chosen one.
[[nodiscard]] bool isUnaskedConversion(PictureType source, PictureType output, OutputFormat format);

// Whether a received file with `extension` (lower case, no dot, by its content) can be changed with these
// options, or can keep private data that they remove. False for every video.
[[nodiscard]] bool mayChange(const ImagingOptions &options, std::string_view extension);

// What a picture with these facts may have, whether or not it can be processed.
[[nodiscard]] PrivateData privateDataOf(const PictureFacts &facts);

// The note on a finished encoding.
[[nodiscard]] std::string noteOf(const Encode &encode, const Rendering &rendering);

} // namespace fennick::ImagePipeline
