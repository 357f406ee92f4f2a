#pragma once

#include "FennickCore/Platform/Threads/Mutex.h"

#include <cstdint>
#include <functional>

namespace fennick {

// Counts the bytes of the uploads in progress. Any thread.
class UploadActivity {
public:
  struct Snapshot {
    std::int64_t uploads = 0;       // under way
    std::int64_t receivedBytes = 0; // received so far
    std::int64_t expectedBytes = 0; // declared in total
    std::int64_t totalBytes = 0;    // received since the start, finished and broken-off uploads included
  };

  // `onBusy` is called on the upload's thread when an upload begins while no other is in progress.
  explicit UploadActivity(std::function<void()> onBusy = {}) : onBusy_(std::move(onBusy)) {}

  [[nodiscard]] Snapshot snapshot() const;

  // One upload from its admission to its end. One thread at a time.
  class Upload {
  public:
    Upload(UploadActivity &activity, std::int64_t expectedBytes);
    ~Upload();
    Upload(const Upload &) = delete;
    Upload &operator=(const Upload &) = delete;
    void received(std::int64_t bytes);

  private:
    UploadActivity &activity_;
    const std::int64_t expectedBytes_;
    std::int64_t receivedBytes_ = 0;
  };

private:
  const std::function<void()> onBusy_;
  mutable Mutex lock_;
  Snapshot state_ GUARDED_BY(lock_);
};

} // namespace fennick
