#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace fennick {

// Names from the time of receipt: "20240501_093000.jpg".
struct TimestampNaming {
  bool operator==(const TimestampNaming &) const = default;
};

// Names from a prefix and an increasing number: "IMG_001.jpg".
struct PrefixSequenceNaming {
  std::string prefix = "IMG";
  std::string separator = "_";
  std::int64_t digits = 3; // used clamped to 1 through 9; longer numbers are not cut
  std::int64_t start = 1;
  bool operator==(const PrefixSequenceNaming &) const = default;
};

// How received files are named (see NameGenerator).
using NamingPolicy = std::variant<TimestampNaming, PrefixSequenceNaming>;

} // namespace fennick
