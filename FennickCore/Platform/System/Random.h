#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// The operating system's cryptographically secure random source. Any thread. Never fails: a kernel without it
// ends the program, since no key could be trusted.
namespace fennick {

void fillRandom(std::span<std::byte> bytes);
[[nodiscard]] std::uint64_t randomWord();

// A new random UUID in upper-case canonical text, 36 characters.
[[nodiscard]] std::string newUUID();
// Returns whether `text` is a UUID in that form.
[[nodiscard]] bool isUUID(std::string_view text);

} // namespace fennick
