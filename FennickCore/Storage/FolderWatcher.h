#pragma once

#include "FennickCore/Platform/Files/DirectoryWatch.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace fennick {

// Reports when the photos in a save folder may have changed: in it and in the folders inside it that may
// contain photos, including new ones. It follows the path: moving the folder away, replacing it, and plugging
// its drive in or out are changes as well.
class FolderWatcher {
public:
  // Calls `onChange` once when watching has begun and then after changes: at once after the first, and once
  // for all that follow within 0.2 s. It is called on a thread of its own and must not destroy the watcher.
  // If the system grants no watches, it is called just once.
  FolderWatcher(const std::filesystem::path &folder, std::function<void()> onChange);
  // Returns when no call is running and none will follow.
  ~FolderWatcher();

private:
  // A watched folder: one that contains photos, or one on the path to the save folder.
  struct Watched {
    int level = 0;    // below the save folder; negative on the way to it
    std::string next; // on the path: the name to follow
  };
  // Where a path led when it was read last.
  struct Place {
    std::filesystem::path path;
    std::optional<FileIdentity> identity; // nullopt if it led nowhere
  };
  enum class Meaning { nothing, photos, folders };

  void run();
  [[nodiscard]] Meaning meaningOf(const DirectoryChange &change) const;
  [[nodiscard]] Meaning readChanges();
  [[nodiscard]] Meaning readMounts() const;
  void watchEverything();
  void watchWayTo(const std::filesystem::path &folder);
  void watchFolder(const std::filesystem::path &folder, int level);
  std::optional<int> watch(const std::filesystem::path &folder, DirectoryWatch::Scope scope);

  const std::filesystem::path folder_;
  const std::function<void()> onChange_;
  DirectoryWatch watch_{DirectoryWatch::Shared::accept};
  // Both are used by the queue's thread only.
  std::map<int, Watched> watched_; // by the number of the watch
  std::vector<Place> places_;      // of all that is watched or would be if it were there
  SerialQueue queue_{"fennick.folder.watch"};
};

} // namespace fennick
