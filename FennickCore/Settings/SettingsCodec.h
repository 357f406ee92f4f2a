#pragma once

#include "FennickCore/Settings/AppSettings.h"

#include <cstddef>
#include <expected>
#include <string>
#include <string_view>

namespace fennick {

// Why a stored record cannot be read, or a record cannot be stored.
struct SettingsError {
  std::string key;     // dotted, "imaging.maxPixels"; empty when the text as a whole is meant
  std::string problem; // "must be a whole number, found a string"

  // One sentence: "imaging.maxPixels: must be a whole number, found a string".
  [[nodiscard]] std::string description() const;
  bool operator==(const SettingsError &) const = default;
};

// The largest text that is looked at, in bytes. A record with every field set and the longest paths takes
// some 20 KiB; a text beyond this was not written by us.
inline constexpr std::size_t kLargestSettings = std::size_t{1} << 20;

// Reads a stored record. A field that is missing or null has its initial value, and unknown fields are passed
// over; a value of the wrong type fails the whole record. A whole number must be written as one (no fraction,
// no exponent) and fit its field. `json` may be anything at all. Any thread.
[[nodiscard]] std::expected<AppSettings, SettingsError> decodeAppSettings(std::string_view json);

// One JSON object with the fields in declared order, absent ones left out; `decodeAppSettings` gives an equal
// record back. Fails when a text is not UTF-8 or a number is not finite. Any thread.
[[nodiscard]] std::expected<std::string, SettingsError> encode(const AppSettings &settings);

} // namespace fennick
