#include "FennickCore/Storage/PhotoExport.h"

#include "FennickCore/Imaging/ProcessingPlan.h"
#include "FennickCore/Platform/Files/AsideFile.h"
#include "FennickCore/Platform/Files/FileCopy.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/FreeName.h"
#include "FennickCore/Storage/Leftovers.h"
#include "FennickCore/Storage/PhotoItem.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <tuple>

namespace fennick::PhotoExport {

namespace fs = std::filesystem;

namespace {

using ImagePipeline::Encode;
using ImagePipeline::Failure;

// What has to be done with one file.
struct Work {
  FileStatus status;
  std::optional<PictureFacts> facts{}; // absent if it is not a picture
  std::optional<Encode> encode{};      // absent: copied as it is
};

std::expected<Work, Failure> workOn(const fs::path &source, const ImagingOptions &options,
                                    PictureDecoder &decoder) {
  const auto status = fileStatus(source);
  if (!status)
    return std::unexpected<Failure>(status.error());
  Work work{.status = *status};
  if (isVideoName(source.filename().native()))
    return work;
  auto facts = decoder.facts(source);
  if (!facts && facts.error().fault == PictureFault::notAPicture)
    return work;
  if (!facts)
    return std::unexpected(ImagePipeline::failureOf(facts.error(), PictureType::jpeg));
  work.facts = *facts;
  auto plan = ImagePipeline::plan(*facts, status->bytes, options, [&] { return decoder.canEncodeHEIC(); });
  if (std::holds_alternative<ImagePipeline::Undecodable>(plan))
    return std::unexpected<Failure>(
        ImagePipeline::PipelineError{.kind = ImagePipeline::PipelineError::Kind::decodeFailed});
  if (auto *encode = std::get_if<Encode>(&plan))
    work.encode = std::move(*encode);
  return work;
}

fs::path nameOf(const fs::path &source, const Work &work) {
  if (!work.encode)
    return source.filename();
  return source.stem().concat(fmt::format(".{}", preferredExtension(work.encode->request.output)));
}

// Returns whether a picture that is copied unchanged contains data that was to be removed. For videos and
// files that are not pictures this is unknown.
bool keepsWhatWasToGo(const Work &work, const ImagingOptions &options) {
  if (work.encode || (!options.stripAllMetadata && !options.stripLocation))
    return false;
  if (!work.facts)
    return true;
  return (options.stripAllMetadata && work.facts->hasMetadata) ||
         (options.stripLocation && work.facts->hasLocation);
}

// A file that is written beside its final name and removed unless it is placed.
class Part {
public:
  Part(const fs::path &folder, FileSystem &files)
      : files_(files), folder_(folder), path_(temporaryIn(folder, Temporary::exported)) {}
  ~Part() {
    if (isWritten_)
      std::ignore = files_.remove(path_);
  }
  Part(const Part &) = delete;
  Part &operator=(const Part &) = delete;

  IOResult<void> write(std::string_view bytes) {
    use_.emplace(folder_);
    auto written = writeAside(files_, path_, bytes, Durability::onDisk);
    isWritten_ = written.has_value();
    return written;
  }
  IOResult<void> copy(const fs::path &source) {
    use_.emplace(folder_);
    auto copied = copyFile(files_, source, path_);
    isWritten_ = copied.has_value();
    return copied;
  }
  // Moves the file to `name` or a similar free name, with the time and permissions of the original.
  IOResult<fs::path> place(const fs::path &name, const FileStatus &original) {
    if (const auto dressed = copyPermissionsAndTime(original, path_); !dressed)
      return std::unexpected(dressed.error());
    auto placed = underFreeName(
        folder_, name, [this](const fs::path &target) { return files_.moveNoReplace(path_, target); });
    if (!placed)
      return placed;
    isWritten_ = false;
    // The file is complete under its name even if this fails.
    std::ignore = files_.syncDirectory(folder_);
    return placed;
  }

private:
  FileSystem &files_;
  const fs::path &folder_;
  const fs::path path_;
  std::optional<FolderUse> use_; // from the creation of the file on
  bool isWritten_ = false;
};

// Writes the new encoding, or a copy of the file, into the part.
std::expected<void, Failure> fill(Part &part, const fs::path &source, const Work &work, Seconds timeout,
                                  PictureDecoder &decoder, Exported &result) {
  IOResult<void> written;
  if (work.encode) {
    const auto &request = work.encode->request;
    const auto rendering = decoder.render(source, request, timeout);
    if (!rendering)
      return std::unexpected(ImagePipeline::failureOf(rendering.error(), request.output));
    result.withinMaxBytes = rendering->withinMaxBytes;
    written = part.write(rendering->bytes);
  } else {
    written = part.copy(source);
  }
  if (!written)
    return std::unexpected<Failure>(written.error());
  return {};
}

Outlook outlookOf(const fs::path &source, const Work &work) {
  Outlook result{.name = nameOf(source, work).string(), .copied = !work.encode, .bytes = work.status.bytes};
  if (work.facts && work.facts->width && work.facts->height)
    result.longEdge = std::max(*work.facts->width, *work.facts->height);
  result.newLongEdge = work.encode ? work.encode->request.longEdge : result.longEdge;
  return result;
}

} // namespace

std::expected<Exported, Failure> exportFile(const fs::path &source, const fs::path &folder,
                                            const ImagingOptions &options, Seconds timeout,
                                            const ImagePipeline::Services &services) {
  const auto work = workOn(source, options, services.decoder);
  if (!work)
    return std::unexpected(work.error());
  Exported result{.copied = !work->encode, .keepsMetadata = keepsWhatWasToGo(*work, options)};
  if (const auto made = services.files.createDirectories(folder); !made)
    return std::unexpected<Failure>(made.error());
  Part part(folder, services.files);
  if (const auto filled = fill(part, source, *work, timeout, services.decoder, result); !filled)
    return std::unexpected(filled.error());
  auto placed = part.place(nameOf(source, *work), work->status);
  if (!placed)
    return std::unexpected<Failure>(placed.error());
  result.file = std::move(*placed);
  return result;
}

std::expected<Outlook, Failure> outlook(const fs::path &source, const ImagingOptions &options,
                                        PictureDecoder &decoder) {
  const auto work = workOn(source, options, decoder);
  if (!work)
    return std::unexpected(work.error());
  return outlookOf(source, *work);
}

} // namespace fennick::PhotoExport
