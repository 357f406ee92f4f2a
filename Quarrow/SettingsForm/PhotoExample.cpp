#include "Quarrow/SettingsForm/PhotoExample.h"

#include "FennickCore/Imaging/ProcessingPlan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <system_error>
#include <utility>
#include <variant>

namespace quarrow::PhotoExample {

namespace {

using fennick::PictureType;
using fennick::RenderRequest;

constexpr fennick::Seconds kTimeout{20};
constexpr Size kTypical{.width = 4032, .height = 3024, .bytes = 3'100'000};

// Bits per pixel of a phone's photo as JPEG in full size, by quality.
struct Point {
  double quality;
  double bits;
};
constexpr std::array kJPEGBits{Point{0.1, 0.22}, Point{0.3, 0.45}, Point{0.5, 0.7},
                               Point{0.7, 1.05}, Point{0.8, 1.35}, Point{0.85, 1.6},
                               Point{0.9, 2.0},  Point{0.95, 2.9}, Point{1.0, 5.0}};
constexpr double kHEICShare = 0.55; // relative to a JPEG's bits at the same quality
constexpr double kPNGBits = 15;

double jpegBits(double quality) {
  const auto *above =
      std::ranges::find_if(kJPEGBits, [&](const Point &each) { return each.quality >= quality; });
  if (above == kJPEGBits.begin())
    return above->bits;
  if (above == kJPEGBits.end())
    return kJPEGBits.back().bits;
  const auto &below = *(above - 1);
  const double share = (quality - below.quality) / (above->quality - below.quality);
  return below.bits + share * (above->bits - below.bits);
}

double bitsInFullSize(PictureType type, double quality) {
  if (type == PictureType::png)
    return kPNGBits;
  return type == PictureType::heic ? jpegBits(quality) * kHEICShare : jpegBits(quality);
}

// Shrinking leaves more detail per pixel.
double bitsPerPixel(PictureType type, double quality, double scale) {
  return bitsInFullSize(type, quality) / std::sqrt(scale);
}

Size scaled(const Size &size, std::int64_t longEdge) {
  const double scale = static_cast<double>(longEdge) / static_cast<double>(std::max(size.width, size.height));
  const auto side = [&](std::int64_t pixels) {
    return std::max<std::int64_t>(1, std::llround(static_cast<double>(pixels) * scale));
  };
  return {.width = side(size.width), .height = side(size.height), .bytes = size.bytes};
}

std::int64_t reckonedBytes(const Size &size, const RenderRequest &request, double quality) {
  const double scale = static_cast<double>(std::max(size.width, size.height)) / kTypical.width;
  const double pixels = static_cast<double>(size.width) * static_cast<double>(size.height);
  return std::llround(pixels * bitsPerPixel(request.output, quality, scale) / 8);
}

// Lowers the quality and then the size until the limit is kept, like the real search.
Size reckoned(const RenderRequest &request) {
  constexpr std::int64_t kSmallestEdge = 320;
  Size size = scaled(kTypical, request.longEdge);
  double quality = request.quality;
  const auto tooLarge = [&] {
    size.bytes = reckonedBytes(size, request, quality);
    return request.maxBytes && size.bytes > *request.maxBytes;
  };
  while (tooLarge())
    if (request.output != PictureType::png && quality > request.qualityFloor)
      quality = std::max(request.qualityFloor, quality - 0.01);
    else if (std::max(size.width, size.height) > kSmallestEdge)
      size = scaled(size, std::max(size.width, size.height) * 9 / 10);
    else
      break;
  return size;
}

bool turns(const fennick::PictureFacts &facts) { return facts.orientation.value_or(fennick::kUpright) >= 5; }

Size sizeOf(const fennick::PictureFacts &facts, std::int64_t bytes) {
  Size size{.width = facts.width.value_or(0), .height = facts.height.value_or(0), .bytes = bytes};
  if (turns(facts))
    std::swap(size.width, size.height);
  return size;
}

} // namespace

Example ofTypicalPhoto(const fennick::ImagingOptions &options, bool canEncodeHEIC) {
  const fennick::PictureFacts facts{.type = PictureType::jpeg,
                                    .width = kTypical.width,
                                    .height = kTypical.height,
                                    .hasLocation = true,
                                    .hasMetadata = true};
  Example example{.before = kTypical};
  const auto plan =
      fennick::ImagePipeline::plan(facts, kTypical.bytes, options, [=] { return canEncodeHEIC; });
  const auto *encode = std::get_if<fennick::ImagePipeline::Encode>(&plan);
  if (encode == nullptr)
    return example;
  example.after = reckoned(encode->request);
  example.fits = !encode->request.maxBytes || example.after->bytes <= *encode->request.maxBytes;
  example.extension = preferredExtension(encode->request.output);
  return example;
}

std::optional<Example> ofPhoto(const std::filesystem::path &file, const fennick::ImagingOptions &options,
                               fennick::PictureDecoder &decoder) {
  std::error_code gone;
  const auto bytes = std::filesystem::file_size(file, gone);
  const auto facts = decoder.facts(file);
  if (gone || !facts || !facts->width || !facts->height)
    return std::nullopt;
  Example example{.name = file.filename().string(),
                  .before = sizeOf(*facts, static_cast<std::int64_t>(bytes)),
                  .estimated = false};
  const auto plan = fennick::ImagePipeline::plan(*facts, example.before.bytes, options,
                                                 [&] { return decoder.canEncodeHEIC(); });
  const auto *encode = std::get_if<fennick::ImagePipeline::Encode>(&plan);
  if (encode == nullptr)
    return example;
  const auto rendering = decoder.render(file, encode->request, kTimeout);
  if (!rendering)
    return std::nullopt;
  example.after = scaled(example.before, rendering->longEdge);
  example.after->bytes = static_cast<std::int64_t>(rendering->bytes.size());
  example.fits = rendering->withinMaxBytes;
  example.extension = preferredExtension(encode->request.output);
  return example;
}

} // namespace quarrow::PhotoExample
