#include "FennickCore/Imaging/ProcessingPlan.h"

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace fennick::ImagePipeline {

namespace {

bool isProcessable(const PictureFacts &facts) {
  return facts.frames == 1 && facts.type != PictureType::gif && !isRaw(facts.type);
}

std::string keptAsIs(const PictureFacts &facts) {
  constexpr std::array<std::string_view, static_cast<std::size_t>(kLastFidelity) + 1> kReasons{
      "", ", HDR", ", wide gamut", ", sample format"}; // in the order of the enumeration
  return fmt::format("原样保存 / kept as is ({}{})", preferredExtension(facts.type),
                     isProcessable(facts) ? kReasons.at(static_cast<std::size_t>(facts.fidelity)) : "");
}

bool isHEIF(PictureType type) { return type == PictureType::heic || type == PictureType::heif; }

struct Output {
  PictureType type;
  std::vector<std::string> remarks{};
};

Output outputOf(PictureType source, OutputFormat format, const std::function<bool()> &canEncodeHEIC) {
  switch (format) {
  case OutputFormat::jpeg:
    return {.type = PictureType::jpeg};
  case OutputFormat::png:
    return {.type = PictureType::png};
  case OutputFormat::heic:
    if (canEncodeHEIC())
      return {.type = PictureType::heic};
    return {.type = PictureType::jpeg,
            .remarks = {"本机不支持 HEIC 编码，改用 JPEG / HEIC unsupported, using JPEG"}};
  case OutputFormat::keep:
    break;
  }
  if (source == PictureType::jpeg || source == PictureType::png)
    return {.type = source};
  if (isHEIF(source))
    return {.type = canEncodeHEIC() ? PictureType::heic : PictureType::jpeg};
  return {.type = PictureType::jpeg, .remarks = {fmt::format("{} → JPEG", preferredExtension(source))}};
}

// A HEIF picture without changes is not encoded again only to be called HEIC.
bool isOwnType(PictureType source, PictureType output) {
  return source == output || (isHEIF(source) && output == PictureType::heic);
}

// A limit below 1, which only a damaged record has, is ignored: it would destroy every photo.
std::optional<std::int64_t> sensible(std::optional<std::int64_t> limit) {
  return limit && *limit >= 1 ? limit : std::nullopt;
}

bool isNeeded(const PictureFacts &facts, const ImagingOptions &options, bool resize, bool overSize) {
  return (facts.hasLocation && options.stripLocation) || resize || overSize ||
         (facts.hasMetadata && options.stripAllMetadata);
}

std::optional<PictureType> chosenType(OutputFormat format) {
  switch (format) {
  case OutputFormat::jpeg:
    return PictureType::jpeg;
  case OutputFormat::heic:
    return PictureType::heic;
  case OutputFormat::png:
    return PictureType::png;
  case OutputFormat::keep:
    break;
  }
  return std::nullopt;
}

bool isVideo(std::string_view extension) {
  return extension == "mov" || extension == "mp4" || extension == "m4v";
}

// Returns whether received files with this extension keep their format if nothing else has to change.
bool keepsFormat(OutputFormat format, std::string_view extension) {
  if (const auto chosen = chosenType(format))
    return extension == (*chosen == PictureType::jpeg ? "jpg" : preferredExtension(*chosen));
  return extension == "jpg" || extension == "png" || extension == "heic";
}

} // namespace

FormatChoice choiceOf(PictureType source, PictureType output, OutputFormat format) {
  return isOwnType(source, output) || output == chosenType(format) ? FormatChoice::user
                                                                   : FormatChoice::program;
}

bool mayChange(const ImagingOptions &options, std::string_view extension) {
  if (isVideo(extension))
    return false;
  if (options.dataToRemove().any())
    return true;
  if (extension == "gif" || extension == "dng")
    return false;
  return sensible(options.maxPixels) || sensible(options.maxBytes) || !keepsFormat(options.format, extension);
}

// If a file contains several pictures, only the first one's metadata is read, except for metadata of the
// whole file. Comments of a GIF are not read.
PrivateData privateDataOf(const PictureFacts &facts) {
  const bool isRead =
      isProcessable(facts) || facts.type == PictureType::webp || facts.type == PictureType::png;
  return {.location = facts.hasLocation || (!isRead && facts.type != PictureType::gif),
          .metadata = facts.hasMetadata || !isRead};
}

Plan plan(const PictureFacts &facts, std::int64_t bytes, const ImagingOptions &options,
          const std::function<bool()> &canEncodeHEIC) {
  if (!isProcessable(facts))
    return LeaveAlone{keptAsIs(facts)};
  if (!facts.width || !facts.height)
    return Undecodable{};
  if (!ImageLimits::check(facts.width, facts.height))
    return LeaveAlone{
        fmt::format("尺寸超限未处理 / oversized, not processed ({}×{})", *facts.width, *facts.height)};

  Output output = outputOf(facts.type, options.format, canEncodeHEIC);
  const std::int64_t longEdge = std::max(*facts.width, *facts.height);
  const auto maxPixels = sensible(options.maxPixels);
  const auto maxBytes = sensible(options.maxBytes);
  const bool resize = maxPixels && *maxPixels < longEdge;
  const bool overSize = maxBytes && *maxBytes < bytes;
  if (!isNeeded(facts, options, resize, overSize) && isOwnType(facts.type, output.type))
    return LeaveAlone{"无需处理 / no change needed"};
  if (facts.fidelity != Fidelity::faithful)
    return LeaveAlone{keptAsIs(facts)};
  return Encode{.request = {.output = output.type,
                            .longEdge = resize ? *maxPixels : longEdge,
                            .maxBytes = maxBytes,
                            .quality = options.qualityInUse(),
                            .qualityFloor = options.floorInUse(),
                            .stripLocation = options.stripLocation,
                            .stripAllMetadata = options.stripAllMetadata},
                .turns = facts.orientation.value_or(kUpright) != kUpright,
                .remarks = std::move(output.remarks),
                .choice = choiceOf(facts.type, output.type, options.format)};
}

std::string noteOf(const Encode &encode, const Rendering &rendering) {
  std::string note = fmt::format("{}px", rendering.longEdge);
  const PictureType output = encode.request.output;
  if (output != PictureType::png)
    // Rounds up: 0.29 × 100 must not become 28.
    note += fmt::format(" · q{}", static_cast<int>(rendering.quality * 100 + 1e-6));
  note += fmt::format(" · {} · {}", fileSizeText(static_cast<std::int64_t>(rendering.bytes.size())),
                      upperCased(preferredExtension(output)));
  if (encode.turns)
    note += " · 已转正 / rotated";
  std::vector<std::string> remarks = encode.remarks;
  if (!rendering.withinMaxBytes)
    remarks.emplace_back("已到最小尺寸/质量，仍超出体积上限 / at minimum, still over the size limit");
  if (rendering.losesVideo)
    remarks.emplace_back("动态照片的视频未保留 / motion video not kept");
  if (rendering.losesGainMap)
    remarks.emplace_back("HDR 增益图未保留 / gain map not kept");
  return remarks.empty() ? note : fmt::format("{} · {}", note, fmt::join(remarks, "；"));
}

} // namespace fennick::ImagePipeline
