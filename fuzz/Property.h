#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace fennick::fuzz {

// Reports a finding if the property does not hold.
inline void require(bool property) {
  if (!property)
    std::abort();
}

inline std::string_view textOf(const std::uint8_t *data, std::size_t size) {
  return {reinterpret_cast<const char *>(data), size};
}

} // namespace fennick::fuzz
