#pragma once

#include "FennickCore/Platform/FileSystem.h"
#include "FennickCore/Platform/Mutex.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace fennick {

// What is left free on the volume for everything else on the computer, in bytes.
inline constexpr std::int64_t kDiskReserve = 1'000'000'000;

// A new part file: open for writing, and a hold on its folder for as long as it is being received, so that no
// other running program takes it for a leftover.
struct IncomingPart {
  std::filesystem::path file;
  std::unique_ptr<WritableFile> handle;
  std::shared_ptr<const DirectoryLock> hold; // none where the file system has no advisory locks
};

// The hidden folder ".fennick-incoming" of the save folder, where bodies are received. Whoever comes to it
// first after a crash clears away the part files that were left, unless another running program holds the
// folder. Any thread; guarded by its own lock.
class IncomingFolder {
public:
  explicit IncomingFolder(FileSystem &files) : files_(files) {} // `files` outlives the object

  // Takes hold of the save folder's incoming folder if it is there, clearing leftovers. For the start.
  void adopt(const std::filesystem::path &saveFolder);

  // A new, empty part file in the save folder's incoming folder, which is made when missing.
  [[nodiscard]] IOResult<IncomingPart> createPart(const std::filesystem::path &saveFolder);

private:
  std::shared_ptr<const DirectoryLock> hold(const std::filesystem::path &incoming);
  std::shared_ptr<const DirectoryLock> acquire(const std::filesystem::path &incoming);
  void removeLeftovers(const std::filesystem::path &incoming);

  FileSystem &files_;
  Mutex lock_;
  std::filesystem::path heldFolder_ GUARDED_BY(lock_);
  std::shared_ptr<const DirectoryLock> held_ GUARDED_BY(lock_);
};

} // namespace fennick
