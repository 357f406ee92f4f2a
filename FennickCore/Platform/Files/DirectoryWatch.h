#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Clock.h"

#include <filesystem>
#include <string>
#include <vector>

namespace fennick {

// What happened in a watched folder since the last `drain`.
struct DirectoryChange {
  enum class Kind {
    appeared, // an entry was created or moved in
    vanished, // an entry was deleted or moved away
    changed,  // an entry's content was written or its attributes were set (Scope::content only)
    lost,     // the folder is gone or is no longer watched; forget what was known of it
    overflow, // events were dropped; forget what was known of every folder (`watch` is 0)
  };
  Kind kind;
  int watch = 0;
  std::string name;
  bool isDirectory = false; // what the entry is, or was
};

// Whether every change in `folder` is made through this computer's kernel. What is not known to be so counts
// as shared with others: network drives, FUSE, folders that a virtual machine's host lends.
[[nodiscard]] bool isOnLocalDrive(const std::filesystem::path &folder);

// Tells which entries come and go directly inside folders (inotify). The kernel queues each change before the
// call that made it returns, so a `drain` sees everything that programs on this computer have done so far.
// Nothing runs in the background. One thread at a time, `interrupt` apart.
class DirectoryWatch {
public:
  // What to do with folders that other computers may change unseen.
  enum class Shared { refuse, accept };
  enum class Scope { names, content };
  enum class Woken { changes, mounts, interrupted, timeout };

  // If the system grants no inotify instance, the object watches no folder.
  explicit DirectoryWatch(Shared shared = Shared::refuse);

  // A number for the folder, given in its changes; the same for a folder that is watched already, whose
  // scope it sets anew. Fails when the folder cannot be watched: it is not there, the user's limit is
  // reached, or it is a shared one that is refused.
  [[nodiscard]] IOResult<int> add(const std::filesystem::path &folder, Scope scope = Scope::names);
  void remove(int watch);
  [[nodiscard]] std::vector<DirectoryChange> drain();

  // From here on `awaitChanges` also tells (`mounts`) when file systems were mounted or unmounted, wherever
  // that was. A folder's watch says nothing of one that is mounted over the folder: it stays with what the
  // path led to before.
  void watchMounts();

  // Sleeps until there is something to drain, or file systems come or go.
  [[nodiscard]] Woken awaitChanges();
  // Sleeps for `length`, whatever happens in the folders meanwhile.
  [[nodiscard]] Woken pause(Seconds length);
  // Ends every sleep, that under way and all to come. Any thread.
  void interrupt();

private:
  enum class Until { changes, timeout };
  [[nodiscard]] Woken sleep(Until until, Seconds most = {});

  Shared shared_;
  FileDescriptor inotify_;
  FileDescriptor wakeup_;
  FileDescriptor mounts_;
};

} // namespace fennick
