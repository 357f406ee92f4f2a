#pragma once

#include "FennickCore/Platform/Files/Trash.h"
#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/MainQueue.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quarrow {

// Keeps the folder for uploads within the user's limit by moving its oldest photos to the trash, on a thread
// of its own ("fennick.prune"), one run at a time. Main thread.
class FolderLimit {
public:
  using Paths = std::vector<std::filesystem::path>;

  // `trash` and `mainQueue` outlive the object. `pruned` is called on the main thread after each run with the
  // removed files, if there are any.
  FolderLimit(fennick::Trash &trash, fennick::MainQueue &mainQueue,
              std::function<void(const Paths &)> pruned);
  ~FolderLimit();
  FolderLimit(const FolderLimit &) = delete;
  FolderLimit &operator=(const FolderLimit &) = delete;

  // Starts a run. All calls during a run together cause one more, with the arguments of the last call.
  void prune(std::filesystem::path folder, std::int64_t limit);
  // Stops a run after its current file and waits for it; no other run starts.
  void stop();

private:
  struct Run {
    std::filesystem::path folder;
    std::int64_t limit = 0;
  };

  void start(Run run);
  void finish(const Run &run, const Paths &files);

  fennick::Trash &trash_;
  fennick::MainQueue &mainQueue_;
  const std::function<void(const Paths &)> pruned_;
  fennick::Lifetime lifetime_;

  bool running_ = false;
  std::optional<Run> next_;
  std::atomic<bool> stopped_ = false;
  std::unique_ptr<fennick::SerialQueue> queue_; // created with the first run; last: it uses the above
};

} // namespace quarrow
