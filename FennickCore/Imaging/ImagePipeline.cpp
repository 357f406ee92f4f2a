#include "FennickCore/Imaging/ImagePipeline.h"

#include "FennickCore/Imaging/Originals.h"
#include "FennickCore/Imaging/PictureCommit.h"
#include "FennickCore/Imaging/ProcessingPlan.h"
#include "FennickCore/Platform/Files/FileStatus.h"

#include <chrono>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

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

std::optional<std::string_view> remarkOn(OriginalFate fate) {
  switch (fate) {
  case OriginalFate::trash:
    return "原图已移到废纸篓 / original moved to the Trash";
  case OriginalFate::keep:
    return "原图在 originals 文件夹 / original kept in originals";
  case OriginalFate::remove:
    break;
  }
  return std::nullopt;
}

// Returns remarks about the original if its fate is unexpected for the user.
std::vector<std::string> remarksOn(const Encode &encode, OriginalFate fate) {
  std::vector<std::string> remarks = encode.remarks;
  if (const auto remark = remarkOn(fate); remark && encode.choice == FormatChoice::program)
    remarks.emplace_back(*remark);
  return remarks;
}

Outcome commit(const fs::path &url, const FileStatus &status, const ImagingOptions &options, Encode encode,
               const Rendering &rendering, const Services &services) {
  PictureCommit commit(url, status, fateOf(options, encode.choice), services);
  if (const auto written = commit.write(rendering.bytes); !written)
    return fail(written.error());
  auto placed = commit.place(preferredExtension(encode.request.output));
  if (!placed)
    return fail(placed.error());
  encode.remarks = remarksOn(encode, placed->original.fate);
  ProcessResult result{
      .finalURL = std::move(placed->file), .processed = true, .note = noteOf(encode, rendering)};
  if (placed->original.fate == OriginalFate::keep)
    result.originalURL = std::move(placed->original.file);
  return result;
}

// Returns what was to happen to `source`, from which `target` was made. In doubt it is the trash: nothing is
// destroyed, and nothing stays beside the photo.
OriginalFate fateAfterInterruption(const fs::path &source, const fs::path &target,
                                   const ImagingOptions &options, const Services &services) {
  const auto before = fileStatus(source);
  const auto after = fileStatus(target);
  const auto type = services.decoder.facts(source);
  const auto newType = services.decoder.facts(target);
  const bool isSure = before && after && before->modified == after->modified && type && newType;
  return fateOf(options,
                isSure ? choiceOf(type->type, newType->type, options.format) : FormatChoice::program);
}

PrivateData without(PrivateData data, const PrivateData &removed) {
  return {.location = data.location && !removed.location, .metadata = data.metadata && !removed.metadata};
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

namespace {

// Sets `remaining` to what the file under `url` may contain as soon as its facts are known.
Outcome attempt(const fs::path &url, const ImagingOptions &options, Seconds timeout, const Services &services,
                PrivateData &remaining) {
  const auto started = std::chrono::steady_clock::now();
  const auto status = fileStatus(url);
  if (!status)
    return fail(status.error());
  const auto facts = services.decoder.facts(url);
  if (!facts && facts.error().fault == PictureFault::notAPicture)
    return unprocessed(url, "非图片，原样保存 / not an image, kept as is");
  if (!facts)
    return fail(facts.error(), PictureType::jpeg);
  remaining = privateDataOf(*facts);
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
  auto result = commit(url, *status, options, *encode, *rendering, services);
  if (result)
    remaining = without(remaining, options.dataToRemove());
  return result;
}

} // namespace

Outcome tryProcess(const fs::path &url, const ImagingOptions &options, Seconds timeout,
                   const Services &services) {
  PrivateData remaining{.location = true, .metadata = true};
  auto result = attempt(url, options, timeout, services, remaining);
  if (result)
    result->remaining = remaining;
  return result;
}

ProcessResult process(const fs::path &url, const ImagingOptions &options, Seconds timeout,
                      const Services &services) {
  PrivateData remaining{.location = true, .metadata = true};
  auto outcome = attempt(url, options, timeout, services, remaining);
  auto result =
      outcome ? std::move(*outcome) : unprocessed(url, "未处理 / skipped: " + description(outcome.error()));
  if (!outcome)
    result.failure = outcome.error();
  result.remaining = remaining;
  return result;
}

bool wasPlaced(const fs::path &output, const fs::path &target) {
  const auto placed = fileIdentity(target);
  const auto left = fileIdentity(output);
  return placed && (!left || *left == *placed);
}

IOResult<ProcessResult> completeCommit(const fs::path &source, const fs::path &target,
                                       const ImagingOptions &options, const Services &services) {
  ProcessResult result{.finalURL = target,
                       .processed = true,
                       .note = "处理曾中断，已补完 / interrupted, completed afterwards"};
  const auto left = fileKind(source);
  if (source == target || (!left && left.error() == std::errc::no_such_file_or_directory))
    return result;
  if (!left)
    return std::unexpected(left.error());
  auto original =
      disposeOfOriginal(source, fateAfterInterruption(source, target, options, services), services);
  if (!original)
    return std::unexpected(original.error());
  std::ignore = services.files.syncDirectory(source.parent_path());
  if (original->fate == OriginalFate::keep)
    result.originalURL = std::move(original->file);
  return result;
}

} // namespace fennick::ImagePipeline
