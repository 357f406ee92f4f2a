#include "FennickCore/Imaging/Picture/RawStructure.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr std::uint16_t kNewSubfileType = 0x00FE;
constexpr std::uint16_t kSubfileType = 0x00FF;
constexpr std::uint16_t kWidth = 0x0100;
constexpr std::uint16_t kHeight = 0x0101;
constexpr std::uint16_t kCompression = 0x0103;
constexpr std::uint16_t kPhotometric = 0x0106;
constexpr std::uint16_t kMake = 0x010F;
constexpr std::uint16_t kModel = 0x0110;
constexpr std::uint16_t kSubDirectories = 0x014A;
constexpr std::uint16_t kSensorPattern = 0x828E; // CFAPattern of TIFF/EP
constexpr std::uint16_t kDNGVersion = 0xC612;

constexpr std::uint64_t kRGB = 2;
constexpr std::uint64_t kYCbCr = 6;
constexpr std::uint64_t kColourFilterArray = 32803;
constexpr std::uint64_t kLinearRaw = 34892;

// Compressions that only cameras write: Sony, Epson, Samsung, Nikon, Kodak, Pentax.
constexpr std::array<std::uint64_t, 6> kMakersCompressions{32767, 32769, 32770, 34713, 65000, 65535};

struct Maker {
  std::string_view make;  // how EXIF's name of the maker begins
  std::string_view model; // part of the model's name
  PictureType type;
};
// The first match counts.
constexpr std::array kMakers{
    Maker{"NIKON", "COOLPIX", PictureType::nrw}, Maker{"NIKON", "", PictureType::nef},
    Maker{"Nikon", "", PictureType::nef},        Maker{"Canon", "", PictureType::cr2},
    Maker{"SONY", "", PictureType::arw},         Maker{"PENTAX", "", PictureType::pef},
    Maker{"RICOH", "", PictureType::pef},        Maker{"SEIKO EPSON", "", PictureType::erf},
    Maker{"EPSON", "", PictureType::erf},        Maker{"Hasselblad", "", PictureType::hasselblad3fr},
    Maker{"Kodak", "DCS", PictureType::dcr},     Maker{"Kodak", "", PictureType::kdc},
    Maker{"KODAK", "", PictureType::kdc},        Maker{"EASTMAN KODAK", "", PictureType::kdc},
    Maker{"SAMSUNG", "", PictureType::srw},      Maker{"Mamiya", "", PictureType::mef},
    Maker{"Leaf", "", PictureType::mos},         Maker{"Phase One", "", PictureType::iiq}};

class Structure {
public:
  Structure(std::string_view file, const TiffLayout &layout)
      : file_(file), layout_(layout), chain_(layout.chain(file)) {
    for (const TiffDirectory &directory : chain_)
      if (const TiffEntry *entry = directory.find(kSubDirectories))
        for (TiffDirectory &below : layout.pointedTo(file, *entry))
          below_.push_back(std::move(below));
  }

  [[nodiscard]] bool isDNG() const { return !chain_.empty() && chain_[0].find(kDNGVersion) != nullptr; }

  [[nodiscard]] bool hasSensorData() const {
    const auto isSensorData = [this](const TiffDirectory &directory) {
      return this->isSensorData(directory);
    };
    return std::ranges::any_of(chain_, isSensorData) || std::ranges::any_of(below_, isSensorData);
  }

  [[nodiscard]] bool startsReduced() const {
    if (chain_.empty())
      return false;
    const TiffDirectory &first = chain_[0];
    return (number(first, kNewSubfileType).value_or(0) & 1) != 0 || number(first, kSubfileType) == 2 ||
           std::ranges::any_of(below_, [&](const auto &below) { return pixels(below) > pixels(first); });
  }

  [[nodiscard]] bool startsWithPicture() const {
    return !chain_.empty() && pixels(chain_[0]) > 0 && !isSensorData(chain_[0]);
  }

  [[nodiscard]] std::optional<PictureType> maker() const {
    const std::string make = text(kMake);
    const std::string model = text(kModel);
    const auto *const found = std::ranges::find_if(kMakers, [&](const Maker &maker) {
      return make.starts_with(maker.make) && model.contains(maker.model);
    });
    return found == kMakers.end() ? std::nullopt : std::optional(found->type);
  }

private:
  [[nodiscard]] std::optional<std::uint64_t> number(const TiffDirectory &directory, std::uint16_t tag) const {
    const TiffEntry *entry = directory.find(tag);
    return entry != nullptr ? layout_.number(file_, *entry) : std::nullopt;
  }
  [[nodiscard]] std::string text(std::uint16_t tag) const {
    const TiffEntry *entry = chain_.empty() ? nullptr : chain_[0].find(tag);
    return entry != nullptr ? std::string(file_.substr(entry->valueAt, entry->valueBytes)) : std::string();
  }
  [[nodiscard]] std::uint64_t pixels(const TiffDirectory &directory) const {
    return number(directory, kWidth).value_or(0) * number(directory, kHeight).value_or(0);
  }
  [[nodiscard]] bool isSensorData(const TiffDirectory &directory) const {
    const auto photometric = number(directory, kPhotometric);
    const auto compression = number(directory, kCompression).value_or(0);
    // Programs that develop raw files may leave the pattern in their output.
    const bool isDeveloped = photometric == kRGB || photometric == kYCbCr;
    return photometric == kColourFilterArray || photometric == kLinearRaw ||
           (directory.find(kSensorPattern) != nullptr && !isDeveloped) ||
           std::ranges::find(kMakersCompressions, compression) != kMakersCompressions.end();
  }

  std::string_view file_;
  const TiffLayout &layout_;
  std::vector<TiffDirectory> chain_;
  std::vector<TiffDirectory> below_; // their sub-directories
};

} // namespace

std::optional<PictureType> rawTypeOf(std::string_view file, const TiffLayout &layout) {
  const Structure structure(file, layout);
  if (structure.isDNG())
    return PictureType::dng;
  if (slice(file, 8, 2) == "CR"sv)
    return PictureType::cr2;
  const auto maker = structure.maker();
  if (structure.hasSensorData())
    return maker.value_or(PictureType::raw);
  return structure.startsReduced() ? maker : std::nullopt;
}

bool startsWithReducedPicture(std::string_view file) {
  const auto layout = TiffLayout::of(file);
  return layout && Structure(file, *layout).startsReduced();
}

bool startsWithPicture(std::string_view file) {
  const auto layout = TiffLayout::of(file);
  return layout && Structure(file, *layout).startsWithPicture();
}

} // namespace fennick::picture
