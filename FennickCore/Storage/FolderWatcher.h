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

// Tells when the photos in a save folder may have changed: in it and in the folders inside it that photos are
// looked for in, those that appear later included. It keeps to the path: a folder that is moved away and
// another, or none, that takes its place are changes as well, be it that a drive is plugged in or out.
class FolderWatcher {
public:
  // `onChange` is called once when the watching has begun and then after changes: at once after the first,
  // and for all that follow within 0.2 s together. On a thread of its own; it must not destroy the watcher.
  // Where the system grants no watching, it is called just once.
  FolderWatcher(const std::filesystem::path &folder, std::function<void()> onChange);
  // Returns when no call is under way and none will come.
  ~FolderWatcher();

private:
  // A folder that is watched: one that photos lie in, or one on the way to the save folder.
  struct Watched {
    int level = 0;    // below the save folder; negative on the way to it
    std::string next; // on the way: the name to follow
  };
  // Where a path led when it was looked at.
  struct Place {
    std::filesystem::path path;
    std::optional<FileIdentity> identity; // absent when it led nowhere
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
  // Of the queue's thread, both.
  std::map<int, Watched> watched_; // by the number of the watch
  std::vector<Place> places_;      // of all that is watched or would be if it were there
  SerialQueue queue_{"fennick.folder.watch"};
};

} // namespace fennick
