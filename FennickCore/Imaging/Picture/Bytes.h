#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Reads and writes numbers in untrusted files. Every position is checked against the end. Pure functions; any
// thread.
namespace fennick::picture {

using Bytes = std::span<const std::byte>;

enum class ByteOrder : std::uint8_t { little, big };

[[nodiscard]] inline std::string_view textOf(Bytes bytes) {
  return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}
[[nodiscard]] inline Bytes bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

// Returns the `length` bytes of `data` from `at` on, or nullopt if any of them lies outside.
[[nodiscard]] std::optional<std::string_view> slice(std::string_view data, std::uint64_t at,
                                                    std::uint64_t length);
// Returns the part of `data` from `at` on, empty if `at` lies outside.
[[nodiscard]] inline std::string_view behind(std::string_view data, std::size_t at) {
  return data.substr(std::min(at, data.size()));
}
// Returns the unsigned number of `width` bytes (0 to 8) at `at`, or nullopt if it reaches past the end.
[[nodiscard]] std::optional<std::uint64_t> readNumber(std::string_view data, std::uint64_t at,
                                                      std::size_t width, ByteOrder order = ByteOrder::big);
// Overwrites `width` bytes at `at`, which must exist, with the lowest bytes of `value`.
void writeNumber(std::string &data, std::size_t at, std::uint64_t value, std::size_t width,
                 ByteOrder order = ByteOrder::big);
[[nodiscard]] std::string numberText(std::uint64_t value, std::size_t width,
                                     ByteOrder order = ByteOrder::big);
// Sets the given range to zero as far as it lies inside `data`.
void zero(std::string &data, std::uint64_t at, std::uint64_t length);

} // namespace fennick::picture
