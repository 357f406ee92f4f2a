#pragma once

#include "FennickCore/Platform/Files/DirectoryWatch.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Storage/TakenNames.h"

#include <filesystem>
#include <list>

namespace fennick {

// The names in the folders that receive photos, read once and then kept up to date by following all changes,
// so that receiving a photo costs the same in a full folder as in an empty one. Folders that cannot be
// followed (network drives) are read each time. One thread at a time.
class FolderListings {
public:
  explicit FolderListings(FileSystem &files) : files_(files) {} // `files` outlives the object

  // Returns the current names in `folder`, borrowed until the next call. Fails if listing the folder fails.
  [[nodiscard]] IOResult<TakenNames *> at(const std::filesystem::path &folder);

private:
  struct Listing {
    std::filesystem::path folder;
    FileIdentity identity;
    int watch = -1; // -1: not followed, to be used once
    TakenNames names;
  };
  using Position = std::list<Listing>::iterator;

  void applyChanges();
  void apply(const DirectoryChange &change);
  IOResult<Listing> read(const std::filesystem::path &folder);
  void forget(Position listing);

  FileSystem &files_;
  DirectoryWatch watch_;
  std::list<Listing> listings_; // most recently used first
};

} // namespace fennick
