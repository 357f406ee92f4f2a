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

// Gives each received file its final name and moves it there in one step that no two uploads can take at
// once. One object is shared by all uploads of a server; any thread; guarded by its own lock.
class NameAllocator {
public:
  explicit NameAllocator(FileSystem &files)
      : files_(files), listings_(files) {} // `files` outlives the object

  // Told the path that a file is about to appear under, with no lock held; again with another path when
  // somebody else took the name first. An error keeps the file where it is and becomes the error of `place`.
  using WillAppear = std::function<IOResult<void>(const std::filesystem::path &file)>;

  // Moves `partFile` into the folder that `destination` names for `instant` under a free name with extension
  // `ext` (lower case, no dot). Either the file stands complete under the returned name and the folder's
  // entry is on the disk, or the part file is where it was and the error says why (EEXIST after 100 names
  // that others took first). Only when a failed sync cannot be undone either does the file stay, whole, under
  // its new name.
  [[nodiscard]] IOResult<std::filesystem::path> place(const std::filesystem::path &partFile,
                                                      const SaveDestination &destination,
                                                      std::string_view ext, Instant instant,
                                                      const WillAppear &willAppear = {});

  // How many photos and videos lie directly in `folder`: what the folder limit counts. 0 when it cannot be
  // listed.
  [[nodiscard]] std::int64_t mediaCount(const std::filesystem::path &folder);

private:
  // One call of `place`: what it looks for a name for, and the names that turned out to be taken.
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
  // By folder and stem, so that numbering keeps rising when files are deleted or moved away.
  std::map<std::string, std::int64_t> lastSequence_ GUARDED_BY(lock_);
};

} // namespace fennick
