#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Upload/IncomingFolder.h"

#include <atomic>
#include <filesystem>
#include <memory>

namespace quarrow {

// Clears away what a killed program left in save folders, on a thread of its own: a folder may hold many
// files, on a slow drive. Main thread.
class FolderCleaner {
public:
  // Both outlive the object.
  FolderCleaner(fennick::FileSystem &files, fennick::IncomingFolder &incoming)
      : files_(files), incoming_(incoming) {}
  ~FolderCleaner() { stop(); }
  FolderCleaner(const FolderCleaner &) = delete;
  FolderCleaner &operator=(const FolderCleaner &) = delete;

  // The save folder is used from now on, or is there again.
  void clear(const std::filesystem::path &saveFolder);
  // Waits for the folder that is being looked at. Afterwards `clear` does nothing.
  void stop();

private:
  fennick::FileSystem &files_;
  fennick::IncomingFolder &incoming_;
  std::atomic<bool> stopped_ = false;
  std::unique_ptr<fennick::SerialQueue> queue_; // from the first folder on; last: it uses the above
};

} // namespace quarrow
