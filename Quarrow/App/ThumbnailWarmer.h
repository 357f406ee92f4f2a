#pragma once

#include "FennickCore/Platform/Threads/Lifetime.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Storage/Thumbnails.h"
#include "FennickCore/Upload/Gallery.h"

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quarrow {

// Makes thumbnails in advance for the first guest of the gallery: one of each size at a time, and only while
// no phone and no window waits for one. Uses two threads of its own, so that a new photo does not wait for a
// whole folder. Main thread.
class ThumbnailWarmer {
public:
  // Both outlive the object. Photos that `filter` hides are left out.
  ThumbnailWarmer(fennick::Thumbnails &thumbnails, fennick::GalleryFilter &filter)
      : thumbnails_(thumbnails), filter_(filter) {}
  ~ThumbnailWarmer() { stop(); }
  ThumbnailWarmer(const ThumbnailWarmer &) = delete;
  ThumbnailWarmer &operator=(const ThumbnailWarmer &) = delete;

  // Makes both sizes for a photo that was received and processed.
  void add(const std::filesystem::path &photo);
  // Makes the small thumbnails of the photos listed in `folder`, which phones may browse from now on;
  // nullopt: none. Does nothing if the folder is unchanged.
  void follow(const std::optional<std::filesystem::path> &folder);
  // Drops what has not started and waits for running thumbnails. Nothing is made afterwards.
  void stop();

private:
  using Queue = std::unique_ptr<fennick::SerialQueue>;
  void post(Queue &queue, const char *label, std::function<void()> task);
  void make(fennick::ThumbnailService &service, const std::filesystem::path &photo);

  fennick::Thumbnails &thumbnails_;
  fennick::GalleryFilter &filter_;
  std::atomic<bool> stopped_ = false;
  std::optional<std::filesystem::path> folder_;
  fennick::Lifetime folderWanted_;
  Queue arrivals_; // both are created with their first task; last: what runs on them uses the above
  Queue listed_;
};

} // namespace quarrow
