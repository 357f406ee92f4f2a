#include "FennickCore/Storage/TakenNames.h"

#include "FennickCore/Imaging/MediaTypes.h"
#include "FennickCore/Support/Text.h"

#include <algorithm>

namespace fennick {

namespace {

constexpr std::size_t kMostStems = 16;  // remembered; a person uses one or two
constexpr std::size_t kMostDigits = 18; // longer numbers are not part of a sequence and could overflow

std::optional<std::int64_t> numberBehind(std::string_view stem, std::string_view name) {
  if (!name.starts_with(stem))
    return std::nullopt;
  const std::string_view rest = name.substr(stem.size());
  const std::string_view number = rest.substr(0, rest.rfind('.'));
  return number.size() <= kMostDigits ? signedDecimal(number) : std::nullopt;
}

} // namespace

void TakenNames::insert(const std::string &name, FileKind kind) {
  const bool media = countsAsMedia(name, kind);
  const auto [entry, added] = names_.try_emplace(name, media);
  if (added) {
    mediaCount_ += media ? 1 : 0;
  } else if (entry->second != media) {
    mediaCount_ += media ? 1 : -1;
    entry->second = media;
  }
  for (auto &[stem, highest] : highest_)
    highest = std::max(highest, numberBehind(stem, name));
}

void TakenNames::erase(const std::string &name) {
  const auto entry = names_.find(name);
  if (entry == names_.end())
    return;
  mediaCount_ -= entry->second ? 1 : 0;
  names_.erase(entry);
  std::erase_if(highest_, [&](const auto &known) {
    return known.second && known.second == numberBehind(known.first, name);
  });
}

std::optional<std::int64_t> TakenNames::highestNumber(const std::string &stem) const {
  if (const auto known = highest_.find(stem); known != highest_.end())
    return known->second;
  std::optional<std::int64_t> highest;
  for (const auto &[name, media] : names_)
    highest = std::max(highest, numberBehind(stem, name));
  if (highest_.size() >= kMostStems)
    highest_.clear();
  highest_.emplace(stem, highest);
  return highest;
}

} // namespace fennick
