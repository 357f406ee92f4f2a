#pragma once

#include "FennickCore/Platform/FileSystem.h"

#include <filesystem>
#include <string>
#include <vector>

namespace fennick {

// What happened in a watched folder since the last `drain`.
struct DirectoryChange {
  enum class Kind {
    appeared, // an entry was created or moved in
    vanished, // an entry was deleted or moved away
    lost,     // the folder is gone or is no longer watched; forget what was known of it
    overflow, // events were dropped; forget what was known of every folder (`watch` is 0)
  };
  Kind kind;
  int watch = 0;
  std::string name;
};

// Tells which entries come and go directly inside folders (inotify). The kernel queues each change before the
// call that made it returns, so a `drain` sees everything that programs on this computer have done so far.
// Nothing runs in the background. One thread at a time.
class DirectoryWatch {
public:
  // An object that can watch nothing when the system grants no inotify instance.
  DirectoryWatch();

  // A number for the folder, given in its changes. Fails when the folder cannot be watched: it is not there,
  // the user's limit is reached, or its file system is one whose changes other computers make unseen.
  [[nodiscard]] IOResult<int> add(const std::filesystem::path &folder);
  void remove(int watch);
  [[nodiscard]] std::vector<DirectoryChange> drain();

private:
  FileDescriptor inotify_;
};

} // namespace fennick
