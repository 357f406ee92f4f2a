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
  std::optional<std::int64_t> sequence; // the number in the name, for sequence naming
};

// Returns a name for a file received at `instant` that is not in `taken`. `ext` has no dot. `lastSequence` is
// the last number given out, which is not used again even if its file is gone. The result is always one name
// that is not hidden: "/" and a leading "." become "-", and a stem that is too long is shortened.
[[nodiscard]] Result generate(const NamingPolicy &policy, Instant instant, std::string_view ext,
                              const TakenNames &taken, std::optional<std::int64_t> lastSequence);

// Returns the part of a sequence name before the number.
[[nodiscard]] std::string sequenceStem(const PrefixSequenceNaming &naming);

} // namespace fennick::NameGenerator
