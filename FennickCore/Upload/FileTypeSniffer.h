#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Decides from the first bytes of a file whether it is a photo or a video, and its extension (lower case, no
// dot). Stateless; any thread.
namespace fennick::FileTypeSniffer {

// How many leading bytes are looked at.
inline constexpr std::size_t kHeaderBytes = 16;

// Returns the extension for the magic number, or nullopt if it is not a photo or video that we accept.
[[nodiscard]] std::optional<std::string> sniff(std::span<const std::byte> header);
// By media type, exactly as written in lower case ("image/jpeg").
[[nodiscard]] std::optional<std::string> extensionForMediaType(std::string_view mediaType);
// By the name's extension in any case; "jpeg" becomes "jpg".
[[nodiscard]] std::optional<std::string> extensionForFilename(std::string_view filename);

// The extension to save under. The magic number decides, whatever the sender says; only a DNG, which looks
// like a TIFF, is believed.
[[nodiscard]] std::optional<std::string> resolve(std::span<const std::byte> header,
                                                 const std::optional<std::string> &mediaType,
                                                 const std::optional<std::string> &filename);

} // namespace fennick::FileTypeSniffer
