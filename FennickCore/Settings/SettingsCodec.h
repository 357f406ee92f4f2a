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

// The longest text that is parsed, in bytes. A record with every field set and the longest paths has about 20
// KiB; a longer text was not written by this program.
inline constexpr std::size_t kLargestSettings = std::size_t{1} << 20;

// Reads a stored record. Missing and null fields get their initial values, and unknown fields are skipped; a
// value of the wrong type fails the whole record. Integers must be written without fraction and exponent and
// fit their field. `json` may be any text. Any thread.
[[nodiscard]] std::expected<AppSettings, SettingsError> decodeAppSettings(std::string_view json);

// Writes one JSON object with the fields in declared order, leaving out absent ones; `decodeAppSettings`
// returns an equal record. Fails if a text is not UTF-8 or a number is not finite. Any thread.
[[nodiscard]] std::expected<std::string, SettingsError> encode(const AppSettings &settings);

} // namespace fennick
