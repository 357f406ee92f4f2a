#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Text functions for all folders. All are pure; any thread.
namespace fennick {

[[nodiscard]] bool isValidUTF8(std::string_view text);

// Converts ISO Latin-1 to UTF-8. Never fails.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

// Returns `text` with every byte that is not part of valid UTF-8 replaced by U+FFFD. For displaying names
// from a file system.
[[nodiscard]] std::string displayText(std::string_view text);

// Replaces every control character by a space, so that the text stays on one line and contains no terminal
// control sequence.
[[nodiscard]] std::string withoutControls(std::string_view text);

// Returns `text` as one line of at most `mostBytes` bytes of UTF-8: without control characters and white
// space at the ends, and cut at a character boundary.
[[nodiscard]] std::string oneLine(std::string_view text, std::size_t mostBytes);

// Convert ASCII letters only; every other byte is kept.
[[nodiscard]] std::string lowerCased(std::string_view text);
[[nodiscard]] std::string upperCased(std::string_view text);

// Returns `text` without spaces and tabs at either end.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// Decodes "%XX" escapes. Returns nullopt if an escape is cut short or not hexadecimal, or if the result is
// not UTF-8.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text);

// Reads `text` as a decimal number with an optional leading "+" or "-". Returns nullopt if it contains
// anything else or the number does not fit.
[[nodiscard]] std::optional<std::int64_t> signedDecimal(std::string_view text);

// Encodes as Base64, standard alphabet with padding.
[[nodiscard]] std::string base64(std::span<const std::byte> bytes);
// Returns nullopt if `text` is not exactly what `base64` writes for some bytes.
[[nodiscard]] std::optional<std::vector<std::byte>> base64Decoded(std::string_view text);

// Formats a byte count in decimal units: "0 KB", "512 字节", "12 KB", "2.4 MB", "1.25 GB".
[[nodiscard]] std::string fileSizeText(std::int64_t bytes);

} // namespace fennick
