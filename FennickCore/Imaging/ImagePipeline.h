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

// Processes received pictures in place, as the user chose: smaller, another format, without metadata. It
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
    busy,
    noDecoder,
    stopped
  };
  Kind kind = Kind::decodeFailed;
  std::string type{}; // the type's identifier, of the first two

  bool operator==(const PipelineError &) const = default;
};
// Why a file was left alone: its picture, or the file system.
using Failure = std::variant<PipelineError, std::error_code>;
} // namespace ImagePipeline

// What became of one received file.
struct ProcessResult {
  std::filesystem::path finalURL; // where the file is now
  std::optional<std::filesystem::path>
      originalURL{};                 // where the untouched original was moved, if it was kept
  bool processed = false;            // a new encoding took the file's place
  std::optional<std::string> note{}; // for the user
  // What the file under `finalURL` still has, or may have where its metadata could not be read.
  PrivateData remaining{.location = true, .metadata = true};
  std::optional<ImagePipeline::Failure> failure{}; // why it was left alone though it should not have been

  bool operator==(const ProcessResult &) const = default;
};

namespace ImagePipeline {

// What the decoder said about a picture that was to become an `output`.
[[nodiscard]] Failure failureOf(const PictureError &error, PictureType output);
// In the words that follow "未处理 / skipped: ".
[[nodiscard]] std::string description(const Failure &failure);

// Told before a finished encoding takes its name: from here until the photo's old name is gone, the end of
// the program can leave the photo under both names, or under its name but without the record that it was
// processed. Called on the thread that processes.
class CommitJournal {
public:
  virtual ~CommitJournal() = default;
  // `output` is the finished encoding in the work folder (<UUID>.out), `target` the name that it is about to
  // be moved to: free just now, or `source` itself when the name stays. Called again with another target when
  // somebody else took the name. Returns once this is on the disk; a failure ends the commit with the photo
  // as it was. After a kill wasPlaced tells whether the photo has to be processed again or completeCommit
  // does the rest; `output` must not be cleaned up before that is decided.
  virtual IOResult<void> willPlace(const std::filesystem::path &source, const std::filesystem::path &output,
                                   const std::filesystem::path &target) = 0;
  // The encoding could not be placed after all, and `output` is about to be removed: what willPlace recorded
  // for `source` no longer holds.
  virtual void didNotPlace(const std::filesystem::path &source) = 0;
};

// What reading and placing go through.
struct Services {
  PictureDecoder &decoder;
  FileSystem &files;
  Trash *trash = nullptr;           // for originals that the user did not ask to convert; null: there is none
  CommitJournal *journal = nullptr; // null: nobody completes a commit that was interrupted
};

// Decides what is to be done and does it. `timeout` bounds the work on the picture.
[[nodiscard]] std::expected<ProcessResult, Failure> tryProcess(const std::filesystem::path &url,
                                                               const ImagingOptions &options, Seconds timeout,
                                                               const Services &services);

// The same for the way of a photo: a failure becomes a result that is not processed, with a note that says
// why.
[[nodiscard]] ProcessResult process(const std::filesystem::path &url, const ImagingOptions &options,
                                    Seconds timeout, const Services &services);

// Whether the encoding `output`, which was about to be moved to `target`, is in its place.
[[nodiscard]] bool wasPlaced(const std::filesystem::path &output, const std::filesystem::path &target);

// Completes a commit that the end of the program interrupted after its encoding was placed: `target` is the
// encoding, `source` the file it was made from, which may be gone already or be `target` itself. Does with
// `source` what processing with `options` does with it. On failure `source` is where it was; calling again is
// harmless.
[[nodiscard]] IOResult<ProcessResult> completeCommit(const std::filesystem::path &source,
                                                     const std::filesystem::path &target,
                                                     const ImagingOptions &options, const Services &services);

} // namespace ImagePipeline

} // namespace fennick
