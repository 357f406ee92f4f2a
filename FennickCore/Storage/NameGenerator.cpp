#include "FennickCore/Storage/NameGenerator.h"

#include "FennickCore/Storage/SaveDestination.h"

#include <fmt/format.h>

#include <algorithm>

namespace fennick::NameGenerator {

namespace {

constexpr std::int64_t kHighestStart = 1'000'000'000'000'000; // leaves room to count up from

Result timestampName(Instant instant, std::string_view ext, const TakenNames &taken) {
  const std::string base = localSecondText(instant);
  std::string candidate = fmt::format("{}.{}", base, ext);
  for (std::int64_t copy = 2; taken.contains(candidate); ++copy)
    candidate = fmt::format("{}_{}.{}", base, copy, ext);
  return {std::move(candidate), std::nullopt};
}

Result sequenceName(const PrefixSequenceNaming &naming, std::string_view ext, const TakenNames &taken,
                    std::optional<std::int64_t> lastSequence) {
  const std::string stem = sequenceStem(naming);
  const auto width = std::clamp<std::int64_t>(naming.digits, 1, 9);
  std::int64_t number = std::clamp<std::int64_t>(naming.start, 0, kHighestStart);
  if (const auto highest = taken.highestNumber(stem))
    number = std::max(number, *highest + 1);
  if (lastSequence)
    number = std::max(number, *lastSequence + 1);
  while (true) {
    std::string candidate = fmt::format("{}{:0{}}.{}", stem, number, width, ext);
    if (!taken.contains(candidate))
      return {std::move(candidate), number};
    ++number;
  }
}

} // namespace

std::string sequenceStem(const PrefixSequenceNaming &naming) {
  std::string stem = naming.prefix + naming.separator;
  std::ranges::replace(stem, '/', '-');
  std::erase(stem, '\0');
  if (stem.starts_with('.'))
    stem.front() = '-';
  // Leaves room for the number and the extension, and does not split characters.
  constexpr std::size_t kLongestStem = 200;
  std::size_t length = std::min(stem.size(), kLongestStem);
  while (length < stem.size() && (static_cast<unsigned char>(stem[length]) & 0xC0) == 0x80)
    --length;
  stem.resize(length);
  return stem;
}

Result generate(const NamingPolicy &policy, Instant instant, std::string_view ext, const TakenNames &taken,
                std::optional<std::int64_t> lastSequence) {
  if (const auto *sequence = std::get_if<PrefixSequenceNaming>(&policy))
    return sequenceName(*sequence, ext, taken, lastSequence);
  return timestampName(instant, ext, taken);
}

} // namespace fennick::NameGenerator
