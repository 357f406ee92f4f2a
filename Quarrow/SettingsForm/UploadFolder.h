#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Storage/SaveDestination.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quarrow {

// The state of the disk that the next photo will meet.
struct UploadFolder {
  std::filesystem::path folder;         // that it goes to, which may not be there yet
  std::string nextName{};               // that a JPEG gets
  std::int64_t media = 0;               // photos and videos in it: what the folder limit counts
  std::vector<std::string> galleries{}; // folders below the save folder that the gallery can show, by name
};

// Reads the folders for a photo received at `instant` by the rules of NameGenerator. A folder that cannot be
// listed counts as empty. Blocks; any thread.
[[nodiscard]] UploadFolder lookAtUploadFolder(const fennick::SaveDestination &destination,
                                              fennick::Instant instant, fennick::FileSystem &files);

} // namespace quarrow
