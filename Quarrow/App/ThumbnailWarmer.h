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

// Makes thumbnails before anybody asks for them, so that the first guest of the gallery finds them: one of
// each size at a time, and only while no phone and no window waits for one. Works on two threads of its own,
// so that a photo that arrives does not wait for a whole folder. Main thread.
class ThumbnailWarmer {
public:
  // Both outlive the object. Photos that `filter` hides are left out.
  ThumbnailWarmer(fennick::Thumbnails &thumbnails, fennick::GalleryFilter &filter)
      : thumbnails_(thumbnails), filter_(filter) {}
  ~ThumbnailWarmer() { stop(); }
  ThumbnailWarmer(const ThumbnailWarmer &) = delete;
  ThumbnailWarmer &operator=(const ThumbnailWarmer &) = delete;

  // A photo was received and processed: makes both sizes.
  void add(const std::filesystem::path &photo);
  // Phones may look into `folder` from now on, or into none: makes the small thumbnails of the photos that
  // are listed there. Does nothing if the folder is the one before.
  void follow(const std::optional<std::filesystem::path> &folder);
  // Leaves out what was not begun and waits for the thumbnails that are being made. Nothing is made
  // afterwards.
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
  Queue arrivals_; // both exist from their first task on; last: what runs on them uses the above
  Queue listed_;
};

} // namespace quarrow
