#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"
#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Storage/FolderListings.h"
#include "FennickCore/Storage/SaveDestination.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fennick {

// Gives each received file its final name and moves it there atomically, so that no two uploads get the same
// name. All uploads of a server share one object; any thread; guarded by its own lock.
class NameAllocator {
public:
  explicit NameAllocator(FileSystem &files)
      : files_(files), listings_(files) {} // `files` outlives the object

  // Called with the path under which a file is about to appear, without a lock held; again with another path
  // if another program took the name first. An error keeps the file where it is and becomes the error of
  // `place`.
  using WillAppear = std::function<IOResult<void>(const std::filesystem::path &file)>;

  // Moves `partFile` into the folder that `destination` names for `instant`, under a free name with extension
  // `ext` (lower case, no dot). Either the file is complete under the returned name and the folder is synced,
  // or the part file is unchanged and the error says why (EEXIST after 100 names that others took first).
  // Only if a failed sync cannot be undone either does the complete file stay under its new name.
  [[nodiscard]] IOResult<std::filesystem::path> place(const std::filesystem::path &partFile,
                                                      const SaveDestination &destination,
                                                      std::string_view ext, Instant instant,
                                                      const WillAppear &willAppear = {});

  // Returns the number of photos and videos directly in `folder`, which the folder limit counts; 0 if it
  // cannot be listed.
  [[nodiscard]] std::int64_t mediaCount(const std::filesystem::path &folder);

private:
  // The state of one call of `place`, and the names that turned out to be taken.
  struct Search {
    std::filesystem::path directory;
    const NamingPolicy &naming;
    std::string_view ext;
    Instant instant;
    std::vector<std::string> refused{};
  };
  struct Reserved {
    std::string name;
    std::optional<std::int64_t> sequence;
  };

  IOResult<std::filesystem::path> moveToFreeName(const std::filesystem::path &partFile, Search search,
                                                 const WillAppear &willAppear);
  IOResult<Reserved> reserve(const Search &search);
  void keep(const Search &search, const Reserved &reserved);
  void giveBack(const Search &search, const Reserved &reserved);

  FileSystem &files_;
  Mutex lock_;
  FolderListings listings_ GUARDED_BY(lock_);
  // By folder and stem, so that numbers keep rising after files are deleted or moved away.
  std::map<std::string, std::int64_t> lastSequence_ GUARDED_BY(lock_);
};

} // namespace fennick
