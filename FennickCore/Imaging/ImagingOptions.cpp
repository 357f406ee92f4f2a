#include "FennickCore/Imaging/ImagingOptions.h"

#include <algorithm>

namespace fennick {

namespace {
constexpr double kLowestQuality = 0.3;
constexpr double kHighestQuality = 1.0;
constexpr double kLowestFloor = 0.1;
} // namespace

std::string_view rawValue(OutputFormat format) {
  switch (format) {
  case OutputFormat::keep:
    return "keep";
  case OutputFormat::jpeg:
    return "jpeg";
  case OutputFormat::heic:
    return "heic";
  case OutputFormat::png:
    return "png";
  }
  return {};
}

std::optional<OutputFormat> outputFormat(std::string_view name) {
  const auto *found = std::ranges::find(kOutputFormats, name, rawValue);
  if (found == kOutputFormats.end())
    return std::nullopt;
  return *found;
}

double ImagingOptions::qualityInUse() const { return std::clamp(quality, kLowestQuality, kHighestQuality); }

double ImagingOptions::floorInUse() const {
  return std::min(std::max(qualityFloor, kLowestFloor), qualityInUse());
}

} // namespace fennick
