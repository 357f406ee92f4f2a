#pragma once

#include "FennickCore/Platform/Threads/Clock.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace fennick {

// The origin of a saved photo and how it was processed, for users who look at it later. Stored with the file,
// so that it survives renames and moves; never sent to phones and not part of exports. A value; any thread.
struct PhotoOrigin {
  std::string address{}; // of the phone that sent it; empty: it was imported on this computer
  std::string name{};    // what it was called there; empty: not said
  Instant receivedAt{};  // in whole seconds
  std::string note{};    // what the processing did, or why it did nothing; may be empty
  // The name of the unprocessed file in the folder "originals" beside it; empty if it was not kept.
  std::string original{};

  bool operator==(const PhotoOrigin &) const = default;
};

// Longest text in bytes. All texts together fit where a file system has 4 KB for a file's attributes.
inline constexpr std::size_t kMostOriginText = 512;

// Returns nullopt if the file was not received by the program, was copied by other programs, lies on a file
// system without attributes, or has a record that cannot be parsed.
[[nodiscard]] std::optional<PhotoOrigin> readOrigin(const std::filesystem::path &file);
// Does nothing if the file system has no attributes.
void writeOrigin(const std::filesystem::path &file, const PhotoOrigin &origin);

// Returns the path of the original that `origin`, the record of `file`, names, or nullopt if it is gone.
[[nodiscard]] std::optional<std::filesystem::path> keptOriginal(const std::filesystem::path &file,
                                                                const PhotoOrigin &origin);

} // namespace fennick
