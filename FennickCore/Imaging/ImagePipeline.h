#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Clock.h"
#include "FennickCore/Platform/FileSystem.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <variant>

namespace fennick {

// What became of one received file.
struct ProcessResult {
  std::filesystem::path finalURL; // where the file is now
  std::optional<std::filesystem::path>
      originalURL{};                 // where the untouched original was moved, if it was kept
  bool processed = false;            // a new encoding took the file's place
  std::optional<std::string> note{}; // for the person

  bool operator==(const ProcessResult &) const = default;
};

// Processes received pictures in place, as the person chose: smaller, another format, without metadata. It
// never fails an upload: whatever cannot or need not be done leaves the file as it arrived.
//
// At every moment of a commit the picture stands whole under its old or its new name. The modification time
// stays that of the arrival. Calls are independent of each other and may run at once; each blocks its caller.
namespace ImagePipeline {

struct PipelineError {
  enum class Kind : std::uint8_t {
    encodeFailed,
    unsupportedType,
    decodeFailed,
    timedOut,
    noDecoder,
    stopped
  };
  Kind kind = Kind::decodeFailed;
  std::string type{}; // the type's identifier, of the first two

  bool operator==(const PipelineError &) const = default;
};
// Why a file was left alone: its picture, or the file system.
using Failure = std::variant<PipelineError, std::error_code>;
// What the decoder said about a picture that was to become an `output`.
[[nodiscard]] Failure failureOf(const PictureError &error, PictureType output);
// In the words that follow "未处理 / skipped: ".
[[nodiscard]] std::string description(const Failure &failure);

// What reading and placing go through.
struct Services {
  PictureDecoder &decoder;
  FileSystem &files;
};

// Decides what is to be done and does it. `timeout` bounds the work on the picture.
[[nodiscard]] std::expected<ProcessResult, Failure> tryProcess(const std::filesystem::path &url,
                                                               const ImagingOptions &options, Seconds timeout,
                                                               const Services &services);

// The same for the way of a photo: a failure becomes a result that is not processed, with a note that says
// why.
[[nodiscard]] ProcessResult process(const std::filesystem::path &url, const ImagingOptions &options,
                                    Seconds timeout, const Services &services);

} // namespace ImagePipeline

} // namespace fennick
