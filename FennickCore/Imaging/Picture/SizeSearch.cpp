#include "FennickCore/Imaging/Picture/SizeSearch.h"

#include <algorithm>
#include <cmath>

namespace fennick::picture {

namespace {

constexpr double kQualityStep = 0.08;
constexpr double kQualitySlack = 0.0001;    // for sums of the step that miss the floor by rounding
constexpr std::int64_t kSmallestEdge = 640; // a smaller photo is of no use
constexpr double kSizeMargin = 0.9;         // aims below the limit, since bytes do not follow pixels exactly
constexpr double kLargestStep = 0.95;       // each size is at least this much smaller than the one before

// An encoding takes about as long as the previous one, or longer if other programs are busy.
constexpr double kTimeMargin = 1.5;

std::int64_t smallerEdge(std::int64_t edge, std::int64_t maxBytes, std::int64_t bytes) {
  const double step = std::min(
      kSizeMargin * std::sqrt(static_cast<double>(maxBytes) / static_cast<double>(bytes)), kLargestStep);
  return std::max(static_cast<std::int64_t>(static_cast<double>(edge) * step), kSmallestEdge);
}

} // namespace

std::optional<Rendering> searchSize(std::int64_t fullEdge, const RenderRequest &request,
                                    const EncodeAt &encodeAt, const Elapsed &elapsed, int mostEncodes) {
  const bool lossless = request.output == PictureType::png;
  Rendering smallest;
  std::int64_t edge = fullEdge;
  double quality = request.quality;
  for (int encodes = 0; encodes < mostEncodes; ++encodes) {
    const Seconds before = elapsed();
    std::string file = encodeAt(edge, quality);
    if (file.empty())
      return std::nullopt;
    if (smallest.bytes.empty() || file.size() < smallest.bytes.size()) {
      smallest.bytes = std::move(file);
      smallest.longEdge = edge;
    }
    smallest.quality = quality;
    const auto size = static_cast<std::int64_t>(smallest.bytes.size());
    if (!request.maxBytes || size <= *request.maxBytes)
      return smallest;
    const Seconds now = elapsed();
    if (request.searchTime && now + kTimeMargin * (now - before) > *request.searchTime)
      break;
    const double lower = quality - kQualityStep;
    if (!lossless && lower >= request.qualityFloor - kQualitySlack) {
      quality = std::max(lower, request.qualityFloor);
      continue;
    }
    if (edge <= kSmallestEdge)
      break;
    edge = smallerEdge(edge, *request.maxBytes, size);
    quality = request.quality;
  }
  smallest.withinMaxBytes = false;
  return smallest;
}

} // namespace fennick::picture
