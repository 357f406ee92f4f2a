#include "FennickCore/Imaging/Picture/ExifDetails.h"

#include "FennickCore/Imaging/Picture/ExifTiff.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fennick::picture {

namespace {

constexpr std::uint16_t kMake = 0x010F;
constexpr std::uint16_t kModel = 0x0110;
constexpr std::uint16_t kExifDirectory = 0x8769;
constexpr std::uint16_t kExposureTime = 0x829A;
constexpr std::uint16_t kFNumber = 0x829D;
constexpr std::uint16_t kISO = 0x8827;
constexpr std::uint16_t kTakenAt = 0x9003;
constexpr std::uint16_t kDigitizedAt = 0x9004;
constexpr std::uint16_t kTakenOffset = 0x9011;
constexpr std::uint16_t kFocalLength = 0x920A;
constexpr std::uint16_t kFocalLength35 = 0xA405;
constexpr std::uint16_t kLensModel = 0xA434;

constexpr std::uint16_t kTextType = 2;
constexpr std::uint16_t kRationalType = 5;
constexpr double kMostSensible = 1e6; // seconds, apertures, millimetres

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// One directory and the data that its entries point into.
class Values {
public:
  Values(const TiffLayout &layout, std::string_view data, TiffDirectory directory)
      : layout_(layout), data_(data), directory_(std::move(directory)) {}

  // Returns the text up to its first NUL; empty if there is none.
  [[nodiscard]] std::string text(std::uint16_t tag) const {
    const TiffEntry *entry = directory_.find(tag);
    if (entry == nullptr || entry->type != kTextType)
      return {};
    const auto value = data_.substr(entry->valueAt, entry->valueBytes);
    return oneLine(value.substr(0, value.find('\0')), kMostDetailText);
  }

  [[nodiscard]] std::optional<std::uint64_t> number(std::uint16_t tag) const {
    const TiffEntry *entry = directory_.find(tag);
    return entry != nullptr ? layout_.number(data_, *entry) : std::nullopt;
  }

  // Returns a positive fraction of plausible size.
  [[nodiscard]] std::optional<double> fraction(std::uint16_t tag) const {
    const TiffEntry *entry = directory_.find(tag);
    if (entry == nullptr || entry->type != kRationalType || entry->valueBytes < 8)
      return std::nullopt;
    const auto above = readNumber(data_, entry->valueAt, 4, layout_.order).value_or(0);
    const auto below = readNumber(data_, entry->valueAt + 4, 4, layout_.order).value_or(0);
    if (above == 0 || below == 0)
      return std::nullopt;
    const double value = static_cast<double>(above) / static_cast<double>(below);
    return value < kMostSensible ? std::optional(value) : std::nullopt;
  }

  // Returns the first directory that the entry points to.
  [[nodiscard]] std::optional<Values> below(std::uint16_t tag) const {
    const TiffEntry *entry = directory_.find(tag);
    auto found = entry != nullptr ? layout_.pointedTo(data_, *entry) : std::vector<TiffDirectory>();
    return found.empty() ? std::nullopt : std::optional(Values(layout_, data_, std::move(found.front())));
  }

private:
  const TiffLayout layout_;
  const std::string_view data_;
  TiffDirectory directory_;
};

// Many models begin with the maker's name.
std::string camera(const std::string &make, const std::string &model) {
  const std::string maker = lowerCased(make.substr(0, make.find(' ')));
  if (model.empty() || make.empty() || lowerCased(model).starts_with(maker))
    return model.empty() ? make : model;
  return oneLine(make + " " + model, kMostDetailText);
}

// Returns whether `text` has digits where `shape` has "0" and is otherwise equal.
bool hasShape(std::string_view text, std::string_view shape) {
  if (text.size() != shape.size())
    return false;
  for (std::size_t i = 0; i < text.size(); ++i)
    if (shape[i] == '0' ? !isDigit(text[i]) : text[i] != shape[i])
      return false;
  return true;
}

// Returns "2024-05-01 10:00:00"; empty for an invalid time, such as the zeros of a camera whose clock was
// never set.
std::string timeText(std::string text) {
  if (!hasShape(text, "0000:00:00 00:00:00") || text.starts_with("0000"))
    return {};
  text[4] = text[7] = '-';
  return text;
}

std::string offsetText(const std::string &text) {
  return hasShape(text, "+00:00") || hasShape(text, "-00:00") ? text : std::string();
}

std::string secondsText(double seconds) {
  constexpr double kLongest = 0.3; // written as a fraction of a second
  if (seconds >= kLongest)
    return fmt::format("{:.3g} s", seconds);
  return fmt::format("1/{} s", std::lround(1 / seconds));
}

double tenths(double value) { return std::round(value * 10) / 10; }

// Returns "1/125 s · f/1.8 · ISO 100 · 26 mm", with the 35 mm equivalent focal length if it is stated.
std::string exposure(const Values &exif) {
  std::vector<std::string> parts;
  if (const auto seconds = exif.fraction(kExposureTime))
    parts.push_back(secondsText(*seconds));
  if (const auto aperture = exif.fraction(kFNumber))
    parts.push_back(fmt::format("f/{:g}", tenths(*aperture)));
  if (const auto sensitivity = exif.number(kISO); sensitivity && *sensitivity > 0)
    parts.push_back(fmt::format("ISO {}", *sensitivity));
  if (const auto focal = exif.number(kFocalLength35); focal && *focal > 0)
    parts.push_back(fmt::format("{} mm", *focal));
  else if (const auto length = exif.fraction(kFocalLength))
    parts.push_back(fmt::format("{:g} mm", tenths(*length)));
  return fmt::format("{}", fmt::join(parts, " · "));
}

} // namespace

PictureDetails exifDetails(std::string_view tiff) {
  const auto layout = TiffLayout::of(tiff);
  auto first = layout ? layout->firstDirectory(tiff) : std::nullopt;
  if (!first)
    return {};
  const Values image(*layout, tiff, std::move(*first));
  PictureDetails details{.camera = camera(image.text(kMake), image.text(kModel))};
  const auto exif = image.below(kExifDirectory);
  if (!exif)
    return details;
  details.lens = exif->text(kLensModel);
  details.taken = timeText(exif->text(kTakenAt));
  if (details.taken.empty())
    details.taken = timeText(exif->text(kDigitizedAt));
  details.offset = offsetText(exif->text(kTakenOffset));
  details.exposure = exposure(*exif);
  return details;
}

} // namespace fennick::picture
