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

// What is left free on the volume for everything else on the computer, in bytes.
inline constexpr std::int64_t kDiskReserve = 1'000'000'000;

// Keeps every program from taking the work in a save folder for leftovers, as long as a copy of it exists. It
// is an open descriptor in the save folder, whose drive cannot be unmounted meanwhile. Null where the file
// system has no advisory locks.
using IncomingHold = std::shared_ptr<const DirectoryLock>;

// A new part file: open for writing, and held for as long as it is being received.
struct IncomingPart {
  std::filesystem::path file;
  std::unique_ptr<WritableFile> handle;
  IncomingHold hold;
};

// The hidden folder ".fennick-incoming" of the save folder, where bodies are received and new encodings are
// written. It is held only while there is work in it. Whoever begins work in a folder that nobody holds
// clears away what an earlier run left there; on a drive that other computers may use, which see nothing of a
// hold, only at the first time. Any thread; guarded by its own lock.
class IncomingFolder {
public:
  // Told that nobody works in `incoming`, before leftovers in it are removed: what an earlier run recorded
  // there can be taken over, and files that must not be removed can be moved or finished. `hold` is exclusive
  // during the call, and other programs wait; whoever takes work over keeps a copy of it. Called on the
  // thread that begins the work, by one thread at a time; it must not call the IncomingFolder.
  using TakeOver = std::function<void(const std::filesystem::path &incoming, const IncomingHold &hold)>;

  // `files` outlives the object.
  explicit IncomingFolder(FileSystem &files, TakeOver takeOver = {})
      : files_(files), takeOver_(std::move(takeOver)) {}

  // Clears away leftovers in the save folder's incoming folder if it is there and nobody works in it. For the
  // start.
  void adopt(const std::filesystem::path &saveFolder);

  // Holds the save folder's incoming folder, which is made when missing, for work in it: an upload, an import
  // or the processing of a photo.
  [[nodiscard]] IOResult<IncomingHold> hold(const std::filesystem::path &saveFolder);

  // A new, empty part file in the save folder's incoming folder, which is made when missing.
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
  std::set<std::filesystem::path> seen_ GUARDED_BY(lock_); // every folder that was held so far
  std::weak_ptr<const DirectoryLock>
      held_ GUARDED_BY(lock_); // the latest hold, while somebody works under it
};

} // namespace fennick
