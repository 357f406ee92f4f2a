#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Upload/IncomingFolder.h"

#include <atomic>
#include <filesystem>
#include <memory>

namespace quarrow {

// Removes what a killed program left in save folders, on a thread of its own, since a folder may hold many
// files on a slow drive. Main thread.
class FolderCleaner {
public:
  // Both outlive the object.
  FolderCleaner(fennick::FileSystem &files, fennick::IncomingFolder &incoming)
      : files_(files), incoming_(incoming) {}
  ~FolderCleaner() { stop(); }
  FolderCleaner(const FolderCleaner &) = delete;
  FolderCleaner &operator=(const FolderCleaner &) = delete;

  // Clears the save folder, which is used from now on or is available again.
  void clear(const std::filesystem::path &saveFolder);
  // Waits for the folder that is being cleared. Afterwards `clear` does nothing.
  void stop();

private:
  fennick::FileSystem &files_;
  fennick::IncomingFolder &incoming_;
  std::atomic<bool> stopped_ = false;
  std::unique_ptr<fennick::SerialQueue> queue_; // created with the first folder; last: it uses the above
};

} // namespace quarrow
