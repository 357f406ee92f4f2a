#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <optional>
#include <string_view>

// The meaning of a picture's samples as colours. Pure functions; any thread.
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
  // Returns whether the colours are within Display P3 and their transfer is close to that of sRGB, which is
  // assumed for colours without a profile.
  [[nodiscard]] bool isOrdinary() const;

  bool operator==(const ColourCoding &) const = default;
};

// Returns the coding that a file states by number besides its colour profile, or nullopt if it states none.
[[nodiscard]] std::optional<ColourCoding> statedColours(Bytes file, PictureType type);

// Returns the coding that a file states and its colour profile `icc` (empty: none) cannot express: any HDR
// coding, or any other that is not ordinary in a file without a profile. Returns nullopt for all other
// pictures.
[[nodiscard]] std::optional<ColourCoding> unusualColours(Bytes file, PictureType type, std::string_view icc);

} // namespace fennick::picture
