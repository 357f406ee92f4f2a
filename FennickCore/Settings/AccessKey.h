#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// The secret in the URL for phones. Any thread.
namespace fennick::AccessKey {

// 56 characters, without those that are easily confused (l, o, I, O, 0, 1).
inline constexpr std::string_view kAlphabet = "abcdefghijkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789";

// The length of the keys in use, about 58 bits.
inline constexpr std::int64_t kLength = 10;

// Returns `length` characters drawn uniformly from the alphabet with the system's secure random source. A
// negative length ends the program.
[[nodiscard]] std::string generate(std::int64_t length);
// The same with another source of uniform 64-bit words, which must not return rejected words for ever.
[[nodiscard]] std::string generate(std::int64_t length, const std::function<std::uint64_t()> &nextWord);

} // namespace fennick::AccessKey
