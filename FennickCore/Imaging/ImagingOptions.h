#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace fennick {

// The format of processed pictures.
enum class OutputFormat {
  keep, // the source's own format if it can be written
  jpeg,
  heic, // JPEG if the computer cannot write HEIC
  png,
};

// Every format in the order of the menu.
inline constexpr std::array kOutputFormats{OutputFormat::keep, OutputFormat::jpeg, OutputFormat::heic,
                                           OutputFormat::png};

// Returns the stored name of a format: "keep", "jpeg", "heic", "png".
[[nodiscard]] std::string_view rawValue(OutputFormat format);
// Returns nullopt for any other name; names are case-sensitive.
[[nodiscard]] std::optional<OutputFormat> outputFormat(std::string_view name);

// Private data of a picture: what is to be removed from it, or what it may still contain.
struct PrivateData {
  bool location = false;
  bool metadata = false; // of any kind

  [[nodiscard]] bool any() const { return location || metadata; }
  [[nodiscard]] bool overlaps(const PrivateData &other) const {
    return (location && other.location) || (metadata && other.metadata);
  }
  bool operator==(const PrivateData &) const = default;
};

// The processing of received pictures. The initial values apply to a stored record that lacks the field.
struct ImagingOptions {
  std::optional<std::int64_t> maxPixels{}; // largest long edge in pixels; absent: no limit
  std::optional<std::int64_t> maxBytes{};  // largest encoded file in bytes; absent: no size target
  OutputFormat format = OutputFormat::keep;
  double quality = 0.85;         // of lossy encoding, 0 to 1, as stored
  double qualityFloor = 0.5;     // how low the search for `maxBytes` may go, as stored
  bool stripLocation = false;    // leave out the GPS block
  bool stripAllMetadata = false; // remove EXIF, TIFF, IPTC and GPS altogether
  bool keepOriginal = false;     // move the untouched upload to "originals" before it is replaced

  bool operator==(const ImagingOptions &) const = default;

  // The values for encoders, whatever is stored: the quality within 0.3 to 1, the floor within 0.1 and that
  // quality.
  [[nodiscard]] double qualityInUse() const;
  [[nodiscard]] double floorInUse() const;

  [[nodiscard]] PrivateData dataToRemove() const {
    return {.location = stripLocation || stripAllMetadata, .metadata = stripAllMetadata};
  }
};

} // namespace fennick
