#include "FennickCore/Imaging/Picture/ToneMapping.h"

#include "FennickCore/Imaging/Picture/Raster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace fennick::picture {

using vips::VImage;

namespace {

constexpr double kWhite = 203;     // cd/m2 of SDR white: BT.2408
constexpr double kPQPeak = 10'000; // cd/m2 of the largest value (ST 2084)
constexpr double kHLGPeak = 1'000; // cd/m2 of the reference display (BT.2100)
constexpr double kHLGGamma = 1.2;  // its system gamma

using RGB = std::array<double, 3>;
using Matrix = std::array<RGB, 3>;

// From linear light in the primaries to sRGB, white point D65.
constexpr Matrix kFromBT2020{
    {{1.660491, -0.587641, -0.072850}, {-0.124550, 1.132900, -0.008349}, {-0.018151, -0.100579, 1.118730}}};
constexpr Matrix kFromP3{
    {{1.224940, -0.224940, 0.0}, {-0.042057, 1.042057, 0.0}, {-0.019638, -0.078636, 1.098274}}};
constexpr Matrix kUnchanged{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

const Matrix &toSRGB(std::uint64_t primaries) {
  constexpr std::uint64_t kDCIP3 = 11;
  if (primaries == ColourCoding::kBT2020)
    return kFromBT2020;
  return primaries == ColourCoding::kDisplayP3 || primaries == kDCIP3 ? kFromP3 : kUnchanged;
}

RGB product(const Matrix &matrix, const RGB &colour) {
  RGB result{};
  for (std::size_t row = 0; row < 3; ++row)
    for (std::size_t column = 0; column < 3; ++column)
      result.at(row) += matrix.at(row).at(column) * colour.at(column);
  return result;
}

// ST 2084.
constexpr double kM1 = 1305.0 / 8192, kM2 = 2523.0 / 32, kC1 = 107.0 / 128, kC2 = 2413.0 / 128,
                 kC3 = 2392.0 / 128;

double lightOfPQ(double code) { // cd/m2
  const double power = std::pow(code, 1 / kM2);
  return kPQPeak * std::pow(std::max(power - kC1, 0.0) / (kC2 - kC3 * power), 1 / kM1);
}

double codeOfPQ(double light) {
  const double power = std::pow(std::max(light, 0.0) / kPQPeak, kM1);
  return std::pow((kC1 + kC2 * power) / (1 + kC3 * power), kM2);
}

// Scene light from 0 to 1 (BT.2100).
double lightOfHLG(double code) {
  constexpr double kA = 0.17883277, kB = 0.28466892, kC = 0.55991073;
  return code <= 0.5 ? code * code / 3 : (std::exp((code - kC) / kA) + kB) / 12;
}

double lightOfSRGB(double code) {
  return code <= 0.04045 ? code / 12.92 : std::pow((code + 0.055) / 1.055, 2.4);
}

double codeOfSRGB(double light) {
  return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

// Returns cd/m2 for a sample from 0 to 1; scene light for HLG.
double lightOf(double code, std::uint64_t transfer) {
  constexpr std::uint64_t kGamma28 = 5;
  switch (transfer) {
  case ColourCoding::kPQ:
    return lightOfPQ(code);
  case ColourCoding::kHLG:
    return lightOfHLG(code);
  case ColourCoding::kLinear:
    return code * kWhite;
  case kGamma28:
    return std::pow(code, 2.8) * kWhite;
  default:
    return lightOfSRGB(code) * kWhite;
  }
}

// Returns cd/m2 on the display for HLG's scene light.
RGB displayed(const RGB &scene) {
  const double luminance = 0.2627 * scene[0] + 0.6780 * scene[1] + 0.0593 * scene[2];
  const double scale = kHLGPeak * std::pow(std::max(luminance, 0.0), kHLGGamma - 1);
  return {scene[0] * scale, scene[1] * scale, scene[2] * scale};
}

// The EETF of BT.2390 from a display with the peak `peak` to SDR white, with black at zero.
class ToneCurve {
public:
  explicit ToneCurve(double peak)
      : peakCode_(codeOfPQ(std::max(peak, kWhite))), most_(codeOfPQ(kWhite) / peakCode_),
        knee_(1.5 * most_ - 0.5) {}

  [[nodiscard]] double operator()(double light) const { // both in cd/m2
    const double code = std::min(codeOfPQ(light) / peakCode_, 1.0);
    if (code <= knee_ || knee_ >= 1)
      return light;
    const double t = (code - knee_) / (1 - knee_);
    const double mapped = (2 * t * t * t - 3 * t * t + 1) * knee_ +
                          (t * t * t - 2 * t * t + t) * (1 - knee_) + (-2 * t * t * t + 3 * t * t) * most_;
    return lightOfPQ(mapped * peakCode_);
  }

private:
  double peakCode_;
  double most_;
  double knee_;
};

unsigned char sampleOf(double light) {
  return static_cast<unsigned char>(std::lround(codeOfSRGB(std::clamp(light / kWhite, 0.0, 1.0)) * 255));
}

// Maps linear light in cd/m2, three samples a pixel, to SDR. The curve follows the largest of the three,
// which preserves hues.
VImage shown(const std::vector<float> &light, int width, int height, const Matrix &matrix) {
  const ToneCurve curve(light.empty() ? 0 : *std::ranges::max_element(light));
  std::vector<unsigned char> samples(light.size());
  for (std::size_t i = 0; i + 2 < light.size(); i += 3) {
    const RGB colour{light[i], light[i + 1], light[i + 2]};
    const double largest = std::ranges::max(colour);
    const double scale = largest > 0 ? curve(largest) / largest : 0;
    const RGB converted = product(matrix, colour);
    for (std::size_t band = 0; band < 3; ++band)
      samples[i + band] = sampleOf(converted.at(band) * scale);
  }
  return VImage(::vips_image_new_from_memory_copy(samples.data(), samples.size(), width, height, 3,
                                                  VIPS_FORMAT_UCHAR))
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// Returns three samples a pixel; gray is repeated.
VImage threeBands(const VImage &image) {
  if (image.bands() >= 3)
    return image.extract_band(0, VImage::option()->set("n", 3));
  const VImage gray = image.extract_band(0);
  return VImage::bandjoin({gray, gray, gray});
}

// Returns the samples as 32-bit floats, three a pixel.
std::vector<float> floatsOf(const VImage &image) {
  const VImage plain = threeBands(image).cast(VIPS_FORMAT_FLOAT).copy_memory();
  const auto *data = static_cast<const float *>(plain.data());
  const auto pixels = static_cast<std::size_t>(plain.width()) * static_cast<std::size_t>(plain.height());
  std::vector<float> samples(data, data + pixels * 3);
  for (float &sample : samples)
    sample = std::isfinite(sample) ? sample : 0;
  return samples;
}

VImage stretched(const VImage &image) {
  const double smallest = image.min(), largest = image.max();
  const double range = largest > smallest ? largest - smallest : 1;
  return threeBands(image)
      .linear(255 / range, -smallest * 255 / range)
      .cast(VIPS_FORMAT_UCHAR)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

} // namespace

VImage toneMapped(const VImage &image, const ColourCoding &coding) {
  const std::size_t steps = image.format() == VIPS_FORMAT_UCHAR ? 256 : 65'536;
  std::vector<float> table(steps);
  for (std::size_t i = 0; i < steps; ++i)
    table[i] =
        static_cast<float>(lightOf(static_cast<double>(i) / static_cast<double>(steps - 1), coding.transfer));
  std::vector<float> light = floatsOf(image);
  for (float &sample : light)
    sample = table[std::min(static_cast<std::size_t>(std::max(sample, 0.0F)), steps - 1)];
  if (coding.transfer == ColourCoding::kHLG)
    for (std::size_t i = 0; i + 2 < light.size(); i += 3) {
      const RGB colour = displayed({light[i], light[i + 1], light[i + 2]});
      std::ranges::transform(colour, light.begin() + static_cast<std::ptrdiff_t>(i),
                             [](double sample) { return static_cast<float>(sample); });
    }
  return shown(light, image.width(), image.height(), toSRGB(coding.primaries));
}

bool isLab(const VImage &image) {
  const auto kind = image.interpretation();
  return kind == VIPS_INTERPRETATION_LAB || kind == VIPS_INTERPRETATION_LABQ ||
         kind == VIPS_INTERPRETATION_LABS;
}

bool hasUnusualSamples(const VImage &image) {
  if (isLab(image))
    return false;
  return image.format() != VIPS_FORMAT_UCHAR && image.format() != VIPS_FORMAT_USHORT;
}

VImage withOrdinarySamples(const VImage &image) {
  const VImage real = ::vips_band_format_iscomplex(image.format()) != 0 ? image.abs() : image;
  if (real.format() != VIPS_FORMAT_FLOAT && real.format() != VIPS_FORMAT_DOUBLE)
    return stretched(real);
  std::vector<float> light = floatsOf(real);
  const float largest = light.empty() ? 0 : *std::ranges::max_element(light);
  if (largest <= 1 && image.bands() >= 3 && !colourProfile(image).empty())
    return forScreen((threeBands(real) * 65'535.0)
                         .cast(VIPS_FORMAT_USHORT)
                         .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16)));
  constexpr auto kBrightest = static_cast<float>(kPQPeak / kWhite);
  // Values far above 1 have another scale, such as 0 to 255.
  const auto scale = static_cast<float>(largest > kBrightest ? kWhite / largest : kWhite);
  for (float &sample : light)
    sample = std::max(sample, 0.0F) * scale;
  return shown(light, image.width(), image.height(), kUnchanged);
}

} // namespace fennick::picture
