#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Storage/ThumbnailService.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace fennick {

// The program's thumbnails in both sizes, shared by the gallery, the photo wall and the quick look, and their
// upkeep on the disk: keeps them within a limit and removes those of photos that are gone. The upkeep has a
// thread of its own and works only on request or after many were stored. Any thread.
class Thumbnails {
public:
  static constexpr std::int64_t kSmallPixels = 400;
  static constexpr int kSmallAtOnce = 4;
  static constexpr std::int64_t kLargePixels = 1600;
  static constexpr int kLargeAtOnce = 2;
  // Most bytes on the disk for each size: about 8,000 small ones, and 900 large ones, for the 500 photos that
  // the gallery and the wall show. May be exceeded by 16 MiB for a moment.
  static constexpr std::int64_t kMostBytes = std::int64_t{256} << 20;

  // Keeps them in the folders "s" and "l" of `cacheDir`. `files` and `decoder` outlive the object.
  Thumbnails(FileSystem &files, const std::filesystem::path &cacheDir, PictureDecoder &decoder,
             std::int64_t mostBytes = kMostBytes);
  // Waits for running upkeep.
  ~Thumbnails() = default;
  Thumbnails(const Thumbnails &) = delete;
  Thumbnails &operator=(const Thumbnails &) = delete;

  [[nodiscard]] ThumbnailService &small() { return small_; }
  [[nodiscard]] ThumbnailService &large() { return large_; }

  // Soon removes all thumbnails of those `photos` that are gone. A photo whose folder is gone as well may lie
  // on an unplugged drive: it is left to `tidy`.
  void forget(std::vector<std::filesystem::path> photos);
  // Soon checks the folder in which photos are saved: removes thumbnails of photos that have gone or changed,
  // and the least recently used ones if there are too many. No photo counts as gone while `folder` cannot be
  // read.
  void tidy(std::filesystem::path folder);

private:
  void trim();

  const std::int64_t mostBytes_;
  ThumbnailService small_;
  ThumbnailService large_;
  SerialQueue queue_{"fennick.thumbs"}; // last: what runs on it uses the above
};

} // namespace fennick
