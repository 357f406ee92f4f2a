#include "FennickCore/Storage/NameAllocator.h"

#include "FennickCore/Storage/NameGenerator.h"

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
                                                     Instant instant) {
  const auto directory = destination.directory(instant);
  auto placed = moveToFreeName(partFile, directory, destination.naming, ext, instant);
  if (!placed)
    return placed;
  // Outside the lock: syncs of uploads that finish together share the disk's work.
  if (auto synced = files_.syncDirectory(directory); !synced) {
    if (auto back = files_.moveNoReplace(*placed, partFile); !back)
      return std::unexpected(back.error());
    return std::unexpected(synced.error());
  }
  return placed;
}

IOResult<std::filesystem::path> NameAllocator::moveToFreeName(const std::filesystem::path &partFile,
                                                              const std::filesystem::path &directory,
                                                              const NamingPolicy &naming,
                                                              std::string_view ext, Instant instant) {
  const Locked locked(lock_);
  if (auto made = files_.createDirectories(directory); !made)
    return std::unexpected(made.error());
  const auto listed = listings_.at(directory);
  if (!listed)
    return std::unexpected(listed.error());
  TakenNames &taken = **listed;
  const std::string key = sequenceKey(directory, naming);
  const auto last = lastSequence_.find(key);
  const auto lastSequence = last == lastSequence_.end() ? std::nullopt : std::optional(last->second);

  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    const auto [name, sequence] = NameGenerator::generate(naming, instant, ext, taken, lastSequence);
    const auto moved = files_.moveNoReplace(partFile, directory / name);
    // A name that is taken without being listed: somebody was quicker, or it differs only in case from one
    // that is. What it stands for is not known here.
    if (moved || moved.error() == std::errc::file_exists)
      taken.insert(name, moved ? FileKind::regular : FileKind::other);
    if (moved) {
      if (sequence)
        lastSequence_[key] = *sequence;
      return directory / name;
    }
    if (moved.error() != std::errc::file_exists)
      return std::unexpected(moved.error());
  }
  return std::unexpected(std::make_error_code(std::errc::file_exists));
}

std::int64_t NameAllocator::mediaCount(const std::filesystem::path &folder) {
  const Locked locked(lock_);
  const auto listed = listings_.at(folder);
  return listed ? (*listed)->mediaCount() : 0;
}

} // namespace fennick
