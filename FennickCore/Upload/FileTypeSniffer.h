#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Determines from the first bytes of a file whether it is a photo or video, and its extension (lower case, no
// dot). Stateless; any thread.
namespace fennick::FileTypeSniffer {

// The number of leading bytes that are examined.
inline constexpr std::size_t kHeaderBytes = 16;

// Returns the extension for the magic number, or nullopt if it is not a photo or video that the program
// accepts.
[[nodiscard]] std::optional<std::string> sniff(std::span<const std::byte> header);
// Returns the extension for a media type written in lower case ("image/jpeg").
[[nodiscard]] std::optional<std::string> extensionForMediaType(std::string_view mediaType);
// Returns the extension of a file name, ignoring case; "jpeg" becomes "jpg".
[[nodiscard]] std::optional<std::string> extensionForFilename(std::string_view filename);

// Returns the extension to save under. The magic number decides, whatever the sender says, except for DNG,
// which has that of TIFF.
[[nodiscard]] std::optional<std::string> resolve(std::span<const std::byte> header,
                                                 const std::optional<std::string> &mediaType,
                                                 const std::optional<std::string> &filename);

} // namespace fennick::FileTypeSniffer
