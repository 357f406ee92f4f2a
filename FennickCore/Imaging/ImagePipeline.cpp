#include "FennickCore/Imaging/ImagePipeline.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Imaging/ProcessingPlan.h"
#include "FennickCore/Platform/AsideFile.h"
#include "FennickCore/Platform/FileAttributes.h"
#include "FennickCore/Platform/FileStatus.h"
#include "FennickCore/Platform/FreeName.h"
#include "FennickCore/Platform/Log.h"
#include "FennickCore/Platform/Random.h"

#include <fmt/format.h>

#include <chrono>
#include <utility>

namespace fennick::ImagePipeline {

namespace fs = std::filesystem;

namespace {

using Outcome = std::expected<ProcessResult, Failure>;

std::unexpected<Failure> fail(PipelineError::Kind kind) {
  return std::unexpected<Failure>(PipelineError{.kind = kind});
}

std::unexpected<Failure> fail(std::error_code error) { return std::unexpected<Failure>(error); }

std::unexpected<Failure> fail(const PictureError &error, PictureType output) {
  return std::unexpected(failureOf(error, output));
}

ProcessResult unprocessed(const fs::path &url, std::string note) {
  return {.finalURL = url, .note = std::move(note)};
}

// The hidden work folder that uploads into this folder have made, there or one of two levels above; else one
// in the folder itself.
fs::path workFolder(const fs::path &folder) {
  fs::path above = folder;
  for (int level = 0; level <= 2; ++level, above = above.parent_path())
    if (const auto kind = fileKind(above / kIncomingFolder); kind && *kind == FileKind::directory)
      return above / kIncomingFolder;
  return folder / kIncomingFolder;
}

// Somebody may have renamed, changed or deleted a photo while it was being worked on: theirs counts.
bool isStillThere(const fs::path &url, const FileStatus &before) {
  const auto now = fileStatus(url);
  return now && now->identity == before.identity && now->bytes == before.bytes &&
         now->modified == before.modified;
}

// Puts a new encoding in the place of a file. Every step either leaves all as it was or has the picture whole
// under both its names.
class Commit {
public:
  Commit(const fs::path &source, const FileStatus &status, FileSystem &files)
      : source_(source), status_(status), files_(files),
        output_(workFolder(source.parent_path()) / (newUUID() + std::string(kProcessedSuffix))) {}
  // Whatever was not moved into place goes.
  ~Commit() {
    if (written_)
      std::ignore = files_.remove(output_);
  }
  Commit(const Commit &) = delete;
  Commit &operator=(const Commit &) = delete;

  // On the disk, with the modification time and the permissions of the file it is made from.
  IOResult<void> write(const std::string &bytes) {
    if (auto made = files_.createDirectories(output_.parent_path()); !made)
      return made;
    if (auto done = writeAside(files_, output_, bytes, Durability::onDisk); !done)
      return done;
    written_ = true;
    copyUserAttributes(source_, output_);
    if (auto done = setPermissions(output_, status_.permissions); !done)
      return done;
    return setModificationTime(output_, status_.modified);
  }

  // A second name in "originals" for the file as it arrived, or where the file system has no second names,
  // the file itself.
  IOResult<fs::path> keepOriginal() {
    const fs::path originals = source_.parent_path() / kOriginalsFolder;
    if (auto made = files_.createDirectories(originals); !made)
      return std::unexpected(made.error());
    auto kept = underFreeName(originals, source_.filename(),
                              [&](const fs::path &target) { return files_.link(source_, target); });
    if (!kept && kept.error() != std::errc::file_exists) {
      kept = underFreeName(originals, source_.filename(),
                           [&](const fs::path &target) { return files_.moveNoReplace(source_, target); });
      moved_ = kept.has_value();
    }
    if (kept) {
      original_ = *kept;
      if (auto synced = files_.syncDirectory(originals); !synced)
        return std::unexpected(synced.error());
    }
    return kept;
  }

  // Undoes keepOriginal.
  void takeBack() {
    if (original_.empty())
      return;
    if (moved_)
      std::ignore = files_.moveNoReplace(original_, source_);
    else
      std::ignore = files_.remove(original_);
  }

  // Moves the encoding to the file's name with `extension`, or a free one like it; the file it is made from
  // is gone then.
  IOResult<fs::path> place(std::string_view extension) {
    const fs::path name = source_.stem().concat(fmt::format(".{}", extension));
    const bool sameName = name == source_.filename();
    if (!isStillThere(moved_ ? original_ : source_, status_))
      return std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
    IOResult<fs::path> placed = source_.parent_path() / name;
    if (sameName && !moved_) {
      if (auto replaced = files_.replace(output_, source_); !replaced)
        return std::unexpected(replaced.error());
    } else {
      placed = underFreeName(source_.parent_path(), name,
                             [&](const fs::path &target) { return files_.moveNoReplace(output_, target); });
      if (!placed)
        return placed;
    }
    written_ = false;
    if (!sameName && !moved_)
      if (const auto removed = files_.remove(source_); !removed)
        log(fmt::format("{} stays beside its new encoding: {}", source_.filename().string(),
                        removed.error().message()));
    // The picture is whole under its new name whether or not this works.
    std::ignore = files_.syncDirectory(source_.parent_path());
    return placed;
  }

private:
  const fs::path &source_;
  const FileStatus &status_;
  FileSystem &files_;
  fs::path output_;
  fs::path original_;
  bool written_ = false;
  bool moved_ = false; // the file itself lies in "originals", not only a second name of it
};

Outcome commit(const fs::path &url, const FileStatus &status, const ImagingOptions &options,
               const Encode &encode, const Rendering &rendering, FileSystem &files) {
  Commit commit(url, status, files);
  if (const auto written = commit.write(rendering.bytes); !written)
    return fail(written.error());
  ProcessResult result{.finalURL = url, .processed = true, .note = noteOf(encode, rendering)};
  if (options.keepOriginal) {
    const auto kept = commit.keepOriginal();
    if (!kept) {
      commit.takeBack();
      return fail(kept.error());
    }
    result.originalURL = *kept;
  }
  const auto placed = commit.place(preferredExtension(encode.request.output));
  if (!placed) {
    commit.takeBack();
    return fail(placed.error());
  }
  result.finalURL = *placed;
  return result;
}

} // namespace

Failure failureOf(const PictureError &error, PictureType output) {
  using enum PipelineError::Kind;
  const auto type = [&] { return std::string(typeIdentifier(output)); };
  switch (error.fault) {
  case PictureFault::unreadable:
    return std::make_error_code(std::errc::io_error);
  case PictureFault::unencodable:
    return PipelineError{.kind = encodeFailed, .type = type()};
  case PictureFault::unsupported:
    return PipelineError{.kind = unsupportedType, .type = type()};
  case PictureFault::timedOut:
    return PipelineError{.kind = timedOut};
  case PictureFault::busy:
    return PipelineError{.kind = busy};
  case PictureFault::noDecoder:
    return PipelineError{.kind = noDecoder};
  case PictureFault::stopped:
    return PipelineError{.kind = stopped};
  default:
    return PipelineError{.kind = decodeFailed};
  }
}

std::string description(const Failure &failure) {
  if (const auto *error = std::get_if<std::error_code>(&failure))
    return error->message();
  const auto &error = std::get<PipelineError>(failure);
  switch (error.kind) {
  case PipelineError::Kind::encodeFailed:
    return "无法编码为 " + error.type;
  case PipelineError::Kind::unsupportedType:
    return "不处理的类型 " + error.type;
  case PipelineError::Kind::timedOut:
    return "处理超时 timed out";
  case PipelineError::Kind::busy:
    return "图片处理程序正忙 / the picture processes are busy";
  case PipelineError::Kind::noDecoder:
    return "隔离的图片处理程序无法启动 / the locked-down picture process cannot be started";
  case PipelineError::Kind::stopped:
    return "接收已结束，照片原样保存 / receiving has ended, the photo is kept as is";
  default:
    return "无法解码图片";
  }
}

Outcome tryProcess(const fs::path &url, const ImagingOptions &options, Seconds timeout,
                   const Services &services) {
  const auto started = std::chrono::steady_clock::now();
  const auto status = fileStatus(url);
  if (!status)
    return fail(status.error());
  const auto facts = services.decoder.facts(url);
  if (!facts && facts.error().fault == PictureFault::notAPicture)
    return unprocessed(url, "非图片，原样保存 / not an image, kept as is");
  if (!facts)
    return fail(facts.error(), PictureType::jpeg);
  const Plan decided = plan(*facts, status->bytes, options, [&] { return services.decoder.canEncodeHEIC(); });
  if (const auto *leave = std::get_if<LeaveAlone>(&decided))
    return unprocessed(url, leave->note);
  const auto *encode = std::get_if<Encode>(&decided);
  if (encode == nullptr)
    return fail(PipelineError::Kind::decodeFailed);
  const Seconds left = timeout - (std::chrono::steady_clock::now() - started);
  const auto rendering = services.decoder.render(url, encode->request, std::max(left, Seconds(0)));
  if (!rendering)
    return fail(rendering.error(), encode->request.output);
  return commit(url, *status, options, *encode, *rendering, services.files);
}

ProcessResult process(const fs::path &url, const ImagingOptions &options, Seconds timeout,
                      const Services &services) {
  auto result = tryProcess(url, options, timeout, services);
  if (result)
    return std::move(*result);
  return unprocessed(url, "未处理 / skipped: " + description(result.error()));
}

IOResult<ProcessResult> completeCommit(const fs::path &source, const fs::path &target,
                                       const ImagingOptions &options, const Services &services) {
  std::ignore = options;
  if (source != target && fileStatus(source))
    if (const auto removed = services.files.remove(source); !removed)
      return std::unexpected(removed.error());
  return ProcessResult{.finalURL = target, .processed = true};
}

} // namespace fennick::ImagePipeline
