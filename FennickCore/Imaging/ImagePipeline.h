#pragma once

#include "FennickCore/Imaging/ImagingOptions.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <variant>

namespace fennick {

// Processes received pictures in place as the user chose: smaller, another format, without metadata. It never
// fails an upload: if something cannot or need not be done, the file stays as it arrived.
//
// At every moment of a commit the picture is complete under its old or its new name. The modification time
// stays that of the arrival. Calls are independent of each other, may run at the same time, and block.
namespace ImagePipeline {

struct PipelineError {
  enum class Kind : std::uint8_t {
    encodeFailed,
    unsupportedType,
    decodeFailed,
    timedOut,
    busy,
    noDecoder,
    stopped
  };
  Kind kind = Kind::decodeFailed;
  std::string type{}; // the type's identifier, for the first two

  bool operator==(const PipelineError &) const = default;
};
// Why a file was not processed: its picture, or the file system.
using Failure = std::variant<PipelineError, std::error_code>;
} // namespace ImagePipeline

// The result for one received file.
struct ProcessResult {
  std::filesystem::path finalURL; // the current path of the file
  std::optional<std::filesystem::path>
      originalURL{};                 // where the untouched original was moved, if it was kept
  bool processed = false;            // a new encoding took the file's place
  std::optional<std::string> note{}; // for the user
  // What the file still contains, or may contain if its metadata could not be read.
  PrivateData remaining{.location = true, .metadata = true};
  std::optional<ImagePipeline::Failure> failure{}; // why it was not processed although it should have been

  bool operator==(const ProcessResult &) const = default;
};

namespace ImagePipeline {

// Translates the decoder's error about a picture that was to become an `output`.
[[nodiscard]] Failure failureOf(const PictureError &error, PictureType output);
// Returns the text that follows "未处理 / skipped: ".
[[nodiscard]] std::string description(const Failure &failure);

// Records encodings before they are moved into place: if the program is killed between that moment and the
// removal of the photo's old name, the photo may exist under both names, or under its name without the record
// that it was processed. Called on the processing thread.
class CommitJournal {
public:
  virtual ~CommitJournal() = default;
  // Announces that the finished encoding `output` in the work folder (<UUID>.out) is about to be moved to
  // `target`, a free name, or `source` itself if the name stays. Called again with another target if another
  // program took the name. Returns once the record is on the disk; a failure ends the commit and the photo
  // stays as it was. After a crash wasPlaced tells whether the photo has to be processed again or
  // completeCommit does the rest; `output` must not be removed before that is decided.
  virtual IOResult<void> willPlace(const std::filesystem::path &source, const std::filesystem::path &output,
                                   const std::filesystem::path &target) = 0;
  // The encoding could not be placed, and `output` is about to be removed: the record of willPlace for
  // `source` is obsolete.
  virtual void didNotPlace(const std::filesystem::path &source) = 0;
};

// What processing uses.
struct Services {
  PictureDecoder &decoder;
  FileSystem &files;
  Trash *trash = nullptr;           // for originals that the user did not ask to convert; null: there is none
  CommitJournal *journal = nullptr; // null: an interrupted commit is not completed
};

// Decides what has to be done and does it. `timeout` limits the work on the picture.
[[nodiscard]] std::expected<ProcessResult, Failure> tryProcess(const std::filesystem::path &url,
                                                               const ImagingOptions &options, Seconds timeout,
                                                               const Services &services);

// Like `tryProcess`, but turns a failure into a result that is not processed, with a note that says why.
[[nodiscard]] ProcessResult process(const std::filesystem::path &url, const ImagingOptions &options,
                                    Seconds timeout, const Services &services);

// Returns whether the encoding `output`, which was about to be moved to `target`, is in its place.
[[nodiscard]] bool wasPlaced(const std::filesystem::path &output, const std::filesystem::path &target);

// Completes a commit that a crash interrupted after its encoding was placed: `target` is the encoding,
// `source` the file it was made from, which may be gone already or be `target` itself. Treats `source` like
// processing with `options`. On failure `source` is unchanged; calling again is harmless.
[[nodiscard]] IOResult<ProcessResult> completeCommit(const std::filesystem::path &source,
                                                     const std::filesystem::path &target,
                                                     const ImagingOptions &options, const Services &services);

} // namespace ImagePipeline

} // namespace fennick
