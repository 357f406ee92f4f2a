#include "FennickCore/Storage/NameAllocator.h"

#include "FennickCore/Storage/NameGenerator.h"

#include <algorithm>
#include <utility>

namespace fennick {

namespace {

constexpr int kMostAttempts = 100;

std::string sequenceKey(const std::filesystem::path &directory, const NamingPolicy &naming) {
  const auto *sequence = std::get_if<PrefixSequenceNaming>(&naming);
  return directory.string() + "|" + (sequence != nullptr ? NameGenerator::sequenceStem(*sequence) : "");
}

} // namespace

IOResult<std::filesystem::path> NameAllocator::place(const std::filesystem::path &partFile,
                                                     const SaveDestination &destination, std::string_view ext,
                                                     Instant instant, const WillAppear &willAppear) {
  const auto directory = destination.directory(instant);
  if (auto made = files_.createDirectories(directory); !made)
    return std::unexpected(made.error());
  auto placed = moveToFreeName(
      partFile, {.directory = directory, .naming = destination.naming, .ext = ext, .instant = instant},
      willAppear);
  if (!placed)
    return placed;
  if (auto synced = files_.syncDirectory(directory); !synced) {
    if (auto back = files_.moveNoReplace(*placed, partFile); !back)
      return std::unexpected(back.error());
    return std::unexpected(synced.error());
  }
  return placed;
}

IOResult<std::filesystem::path> NameAllocator::moveToFreeName(const std::filesystem::path &partFile,
                                                              Search search, const WillAppear &willAppear) {
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    const auto reserved = reserve(search);
    if (!reserved)
      return std::unexpected(reserved.error());
    const auto file = search.directory / reserved->name;
    auto done = willAppear ? willAppear(file) : IOResult<void>();
    if (done)
      done = files_.moveNoReplace(partFile, file);
    if (done) {
      keep(search, *reserved);
      return file;
    }
    if (done.error() != std::errc::file_exists) {
      giveBack(search, *reserved);
      return std::unexpected(done.error());
    }
    // Another program was quicker, or the name differs from a listed one only in case.
    search.refused.push_back(reserved->name);
  }
  return std::unexpected(std::make_error_code(std::errc::file_exists));
}

// Reserves a name among the uploads of this server. It does not count as a photo until the file has it.
IOResult<NameAllocator::Reserved> NameAllocator::reserve(const Search &search) {
  const Locked locked(lock_);
  const auto listed = listings_.at(search.directory);
  if (!listed)
    return std::unexpected(listed.error());
  TakenNames &taken = **listed;
  for (const auto &name : search.refused) // folders that cannot be followed were listed again
    taken.insert(name, FileKind::other);
  const auto last = lastSequence_.find(sequenceKey(search.directory, search.naming));
  const auto lastSequence = last == lastSequence_.end() ? std::nullopt : std::optional(last->second);
  auto [name, sequence] =
      NameGenerator::generate(search.naming, search.instant, search.ext, taken, lastSequence);
  taken.insert(name, FileKind::other);
  return Reserved{.name = std::move(name), .sequence = sequence};
}

void NameAllocator::keep(const Search &search, const Reserved &reserved) {
  if (!reserved.sequence)
    return;
  const Locked locked(lock_);
  auto &last = lastSequence_[sequenceKey(search.directory, search.naming)];
  last = std::max(last, *reserved.sequence);
}

void NameAllocator::giveBack(const Search &search, const Reserved &reserved) {
  const Locked locked(lock_);
  if (const auto listed = listings_.at(search.directory))
    (*listed)->erase(reserved.name);
}

std::int64_t NameAllocator::mediaCount(const std::filesystem::path &folder) {
  const Locked locked(lock_);
  const auto listed = listings_.at(folder);
  return listed ? (*listed)->mediaCount() : 0;
}

} // namespace fennick
