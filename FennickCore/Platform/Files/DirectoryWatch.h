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
    overflow, // the kernel dropped events: nothing known about any folder is certain (`watch` is 0)
  };
  Kind kind;
  int watch = 0;
  std::string name;
  bool isDirectory = false; // the entry is, or was, a folder
};

// Returns whether all changes in `folder` are made through this computer's kernel. Network drives, FUSE and
// folders shared by a virtual machine's host are not local, nor is anything unknown.
[[nodiscard]] bool isOnLocalDrive(const std::filesystem::path &folder);

// Tells which entries come and go directly inside folders (inotify). The kernel queues each change before the
// call that made it returns, so a `drain` sees everything that programs on this computer have done so far.
// Nothing runs in the background. One thread at a time, `interrupt` apart.
class DirectoryWatch {
public:
  // What to do with folders that other computers may change without an event here.
  enum class Shared { refuse, accept };
  enum class Scope { names, content };
  enum class Woken { changes, mounts, interrupted, timeout };

  // If the system grants no inotify instance, the object watches no folder.
  explicit DirectoryWatch(Shared shared = Shared::refuse);

  // Watches a folder and returns the number that its changes carry. A folder that is watched already keeps
  // its number and gets the new scope. Fails if the folder does not exist, the user's limit of watches is
  // reached, or it is shared and shared folders are refused.
  [[nodiscard]] IOResult<int> add(const std::filesystem::path &folder, Scope scope = Scope::names);
  void remove(int watch);
  [[nodiscard]] std::vector<DirectoryChange> drain();

  // Lets `awaitChanges` return `mounts` when any file system is mounted or unmounted. Without this, mounting
  // over a watched folder goes unnoticed: its watch stays with the folder below.
  void watchMounts();

  // Sleeps until there is something to drain or a file system was mounted or unmounted.
  [[nodiscard]] Woken awaitChanges();
  // Sleeps for `length`, whatever happens in the folders meanwhile.
  [[nodiscard]] Woken pause(Seconds length);
  // Ends the current and all later sleeps. Any thread.
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
