#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// Decides from a picture's facts how it has to be processed. Pure functions; any thread.
namespace fennick::ImagePipeline {

// The file stays unchanged, and the user reads this note.
struct LeaveAlone {
  std::string note;
};

// Who chose the format of a new encoding: the program does if the user wants photos to keep their format and
// it cannot be written.
enum class FormatChoice : std::uint8_t { user, program };

// A new encoding.
struct Encode {
  RenderRequest request;
  bool turns = false;                 // the stored picture does not stand upright
  std::vector<std::string> remarks{}; // on the choice of the format
  FormatChoice choice = FormatChoice::user;
};

// The size cannot be read.
struct Undecodable {};

using Plan = std::variant<LeaveAlone, Encode, Undecodable>;

// `bytes` is the file's size. `canEncodeHEIC` is called only if it matters.
[[nodiscard]] Plan plan(const PictureFacts &facts, std::int64_t bytes, const ImagingOptions &options,
                        const std::function<bool()> &canEncodeHEIC);

// Returns who chose the format if the user chose `format` and a picture of type `source` is written as
// `output`. The program did if, for example, a WebP becomes a JPEG because no format was chosen, or because
// this computer cannot write the chosen one.
[[nodiscard]] FormatChoice choiceOf(PictureType source, PictureType output, OutputFormat format);

// Returns whether a received file with `extension` (lower case, no dot, by its content) can be changed with
// these options, or can keep private data that they remove. False for every video.
[[nodiscard]] bool mayChange(const ImagingOptions &options, std::string_view extension);

// Returns what a picture with these facts may contain, whether or not it can be processed.
[[nodiscard]] PrivateData privateDataOf(const PictureFacts &facts);

// Returns the note on a finished encoding.
[[nodiscard]] std::string noteOf(const Encode &encode, const Rendering &rendering);

} // namespace fennick::ImagePipeline
