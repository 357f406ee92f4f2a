#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// Where a saved photo came from and what was done to it, as the program remembers it for users who look at
// it later. It is kept with the file itself and follows it when it is renamed or moved; it is never sent
// to a phone and is no part of an export. A value; any thread.
struct PhotoOrigin {
  std::string address{}; // of the phone that sent it; empty: it was taken in on this computer
  std::string name{};    // what it was called there; empty: not said
  Instant receivedAt{};  // in whole seconds
  std::string note{};    // what the processing did, or why it did nothing; may be empty
  // The name under which the untouched file was kept in the folder "originals" beside it; empty: it was not.
  std::string original{};

  bool operator==(const PhotoOrigin &) const = default;
};

// Texts are kept up to this many bytes each: all of them fit where a file system has 4 KB for a file's
// attributes.
inline constexpr std::size_t kMostOriginText = 512;

// Nothing for a file that came some other way, was copied by other programs, lies on a file system that keeps
// no such records, or has one that cannot be understood.
[[nodiscard]] std::optional<PhotoOrigin> readOrigin(const std::filesystem::path &file);
// Where the file system keeps no such records nothing happens.
void writeOrigin(const std::filesystem::path &file, const PhotoOrigin &origin);

// Returns where the original lies that `origin`, the record of `file`, names, or nullopt if it is gone.
[[nodiscard]] std::optional<std::filesystem::path> keptOriginal(const std::filesystem::path &file,
                                                                const PhotoOrigin &origin);

} // namespace fennick
