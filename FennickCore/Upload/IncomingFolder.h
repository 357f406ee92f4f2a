#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <utility>

namespace fennick {

// Bytes that stay free on the volume for everything else on the computer.
inline constexpr std::int64_t kDiskReserve = 1'000'000'000;

// Prevents all programs from treating the work in a save folder as leftovers while a copy of it exists. It is
// an open descriptor in the save folder, so its drive cannot be unmounted meanwhile. Null if the file system
// has no advisory locks.
using IncomingHold = std::shared_ptr<const DirectoryLock>;

// A new part file, open for writing, and the hold that protects it while it is received.
struct IncomingPart {
  std::filesystem::path file;
  std::unique_ptr<WritableFile> handle;
  IncomingHold hold;
};

// The hidden folder ".fennick-incoming" of the save folder, where bodies are received and new encodings are
// written. It is locked only while there is work in it. The first worker in an unlocked folder clears away
// what an earlier run left; on a drive shared with other computers, which do not see the lock, only the first
// time. Any thread; guarded by its own lock.
class IncomingFolder {
public:
  // Called when nobody works in `incoming`, before leftovers are removed, so that records of an earlier run
  // can be taken over and files moved or finished. `hold` is exclusive during the call and other programs
  // wait; keep a copy to continue work. Called on the thread that begins the work, one thread at a time; it
  // must not call the IncomingFolder.
  using TakeOver = std::function<void(const std::filesystem::path &incoming, const IncomingHold &hold)>;

  // `files` outlives the object.
  explicit IncomingFolder(FileSystem &files, TakeOver takeOver = {})
      : files_(files), takeOver_(std::move(takeOver)) {}

  // Clears away leftovers in the save folder's incoming folder if it exists and nobody works in it. For the
  // start.
  void adopt(const std::filesystem::path &saveFolder);

  // Holds the save folder's incoming folder, creating it if it is missing, for an upload, an import or the
  // processing of a photo.
  [[nodiscard]] IOResult<IncomingHold> hold(const std::filesystem::path &saveFolder);

  // Creates an empty part file in the save folder's incoming folder, which is created if it is missing.
  [[nodiscard]] IOResult<IncomingPart> createPart(const std::filesystem::path &saveFolder);

private:
  IncomingHold share(const std::filesystem::path &incoming);
  IncomingHold acquire(const std::filesystem::path &incoming);
  bool mayTakeOver(const std::filesystem::path &incoming);
  void removeLeftovers(const std::filesystem::path &incoming);

  FileSystem &files_;
  const TakeOver takeOver_;
  Mutex lock_;
  std::filesystem::path heldFolder_ GUARDED_BY(lock_);
  std::set<std::filesystem::path> seen_ GUARDED_BY(lock_);    // every folder held so far
  std::weak_ptr<const DirectoryLock> held_ GUARDED_BY(lock_); // the latest hold, while in use
};

} // namespace fennick
