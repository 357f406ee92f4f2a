#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// The secret in the phone's URL. Any thread.
namespace fennick::AccessKey {

// 56 characters; those that people mistake for one another (l, o, I, O, 0, 1) are left out.
inline constexpr std::string_view kAlphabet = "abcdefghijkmnpqrstuvwxyzABCDEFGHJKLMNPQRSTUVWXYZ23456789";

// The length of the keys in use, about 58 bits.
inline constexpr std::int64_t kLength = 10;

// `length` characters, each drawn evenly from the alphabet with the system's secure random source. A negative
// length ends the program.
[[nodiscard]] std::string generate(std::int64_t length);
// The same from another source of even 64-bit words, which must not give the same rejected word for ever.
[[nodiscard]] std::string generate(std::int64_t length, const std::function<std::uint64_t()> &nextWord);

} // namespace fennick::AccessKey
