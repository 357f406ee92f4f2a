#pragma once

#include "FennickCore/Platform/Clock.h"
#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/Mutex.h"
#include "FennickCore/Storage/FolderListings.h"
#include "FennickCore/Storage/SaveDestination.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

// Gives each received file its final name and moves it there in one step that no two uploads can take at
// once. One object is shared by all uploads of a server; any thread; guarded by its own lock.
class NameAllocator {
public:
  explicit NameAllocator(FileSystem &files)
      : files_(files), listings_(files) {} // `files` outlives the object

  // Moves `partFile` into the folder that `destination` names for `instant` under a free name with extension
  // `ext` (lower case, no dot). Either the file stands complete under the returned name and the folder's
  // entry is on the disk, or the part file is where it was and the error says why (EEXIST after 100 names
  // that others took first). Only when a failed sync cannot be undone either does the file stay, whole, under
  // its new name.
  [[nodiscard]] IOResult<std::filesystem::path> place(const std::filesystem::path &partFile,
                                                      const SaveDestination &destination,
                                                      std::string_view ext, Instant instant);

  // How many photos and videos lie directly in `folder`: what the folder limit counts. 0 when it cannot be
  // listed.
  [[nodiscard]] std::int64_t mediaCount(const std::filesystem::path &folder);

private:
  IOResult<std::filesystem::path> moveToFreeName(const std::filesystem::path &partFile,
                                                 const std::filesystem::path &directory,
                                                 const NamingPolicy &naming, std::string_view ext,
                                                 Instant instant);

  FileSystem &files_;
  Mutex lock_;
  FolderListings listings_ GUARDED_BY(lock_);
  // By folder and stem, so that numbering keeps rising when files are deleted or moved away.
  std::map<std::string, std::int64_t> lastSequence_ GUARDED_BY(lock_);
};

} // namespace fennick
