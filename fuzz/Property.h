#pragma once

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace fennick::fuzz {

// What must hold for every input; a violation is a finding.
inline void require(bool property) {
  if (!property)
    std::abort();
}

inline std::string_view textOf(const std::uint8_t *data, std::size_t size) {
  return {reinterpret_cast<const char *>(data), size};
}

} // namespace fennick::fuzz
