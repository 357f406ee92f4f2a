#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <optional>
#include <string_view>

// What the samples of a picture mean as colours. Pure functions; any thread.
namespace fennick::picture {

// Code points of ITU-T H.273.
struct ColourCoding {
  std::uint64_t primaries = 2; // 2: unspecified
  std::uint64_t transfer = 2;

  static constexpr std::uint64_t kBT2020 = 9;
  static constexpr std::uint64_t kDisplayP3 = 12;
  static constexpr std::uint64_t kLinear = 8;
  static constexpr std::uint64_t kPQ = 16;
  static constexpr std::uint64_t kHLG = 18;

  [[nodiscard]] bool isHDR() const { return transfer == kPQ || transfer == kHLG; }
  // Whether the colours are within Display P3 and their transfer is close to that of sRGB, which is how
  // colours without a profile are understood.
  [[nodiscard]] bool isOrdinary() const;

  bool operator==(const ColourCoding &) const = default;
};

// The coding that a file states by number, beside its colour profile; nullopt if it states none.
[[nodiscard]] std::optional<ColourCoding> statedColours(Bytes file, PictureType type);

// The coding that a file states and that its colour profile `icc` (empty: none) cannot stand for: an HDR one,
// stated anywhere, or any other that is not ordinary in a file without a profile. nullopt for all other
// pictures.
[[nodiscard]] std::optional<ColourCoding> unusualColours(Bytes file, PictureType type, std::string_view icc);

} // namespace fennick::picture
