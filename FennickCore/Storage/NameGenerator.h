#pragma once

#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/NamingPolicy.h"
#include "FennickCore/Storage/TakenNames.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fennick::NameGenerator {

struct Result {
  std::string name;                     // with extension
  std::optional<std::int64_t> sequence; // the number used, for sequence naming
};

// A name for a file received at `instant` that is not among `taken`. `ext` has no dot. `lastSequence` is the
// last number given out before, which is not used again even when its file is gone. Whatever the prefix is,
// the result is one name that is not hidden: "/" and a leading "." become "-", and an overlong stem is cut.
[[nodiscard]] Result generate(const NamingPolicy &policy, Instant instant, std::string_view ext,
                              const TakenNames &taken, std::optional<std::int64_t> lastSequence);

// What stands before the number of a sequence name.
[[nodiscard]] std::string sequenceStem(const PrefixSequenceNaming &naming);

} // namespace fennick::NameGenerator
