#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Small functions on text that several rooms need. All are pure; any thread.
namespace fennick {

[[nodiscard]] bool isValidUTF8(std::string_view text);

// Every byte read as its ISO Latin-1 character, written as UTF-8. Never fails.
[[nodiscard]] std::string utf8FromLatin1(std::string_view bytes);

// `text` as it stands when it is UTF-8; otherwise with every byte that is not part of a valid sequence
// replaced by U+FFFD. For showing names that a file system handed us.
[[nodiscard]] std::string displayText(std::string_view text);

// `text` with a space for every control character, so that it stays on its line and gives no orders to a
// terminal.
[[nodiscard]] std::string withoutControls(std::string_view text);

// `text` as one line for people, of at most `mostBytes` bytes: UTF-8, no control characters, no white space
// at its ends, cut where a character ends.
[[nodiscard]] std::string oneLine(std::string_view text, std::size_t mostBytes);

// ASCII letters only; every other byte is kept.
[[nodiscard]] std::string lowerCased(std::string_view text);
[[nodiscard]] std::string upperCased(std::string_view text);

// `text` without spaces and tabs at either end.
[[nodiscard]] std::string_view trimmed(std::string_view text);

// Decodes "%XX" escapes. Returns nullopt if an escape is cut short or not hexadecimal, or if the result is
// not UTF-8.
[[nodiscard]] std::optional<std::string> percentDecoded(std::string_view text);

// Reads `text` as a decimal number with an optional leading "+" or "-". Returns nullopt if it contains
// anything else or the number does not fit.
[[nodiscard]] std::optional<std::int64_t> signedDecimal(std::string_view text);

// Base64, standard alphabet with padding.
[[nodiscard]] std::string base64(std::span<const std::byte> bytes);
// Returns nullopt if `text` is not exactly what `base64` writes for some bytes.
[[nodiscard]] std::optional<std::vector<std::byte>> base64Decoded(std::string_view text);

// A byte count in the file-size style, decimal units: "0 KB", "512 字节", "12 KB", "2.4 MB", "1.25 GB".
[[nodiscard]] std::string fileSizeText(std::int64_t bytes);

} // namespace fennick
