#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/SerialQueue.h"
#include "FennickCore/Storage/ThumbnailService.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace fennick {

// The program's thumbnails in both sizes, for the gallery, the photo wall and the quick look together, and
// the upkeep of what is stored of them: no more than a limit, and nothing of photos that are gone. The upkeep
// has a thread of its own, which only works when it is asked to or when a lot was stored. Any thread.
class Thumbnails {
public:
  static constexpr std::int64_t kSmallPixels = 400;
  static constexpr int kSmallAtOnce = 4;
  static constexpr std::int64_t kLargePixels = 1600;
  static constexpr int kLargeAtOnce = 2;
  // Most bytes on the disk for each size: some 8,000 small ones, and 900 large ones of the 500 photos that
  // the gallery and the wall show. Up to 16 MiB more are there for a moment.
  static constexpr std::int64_t kMostBytes = std::int64_t{256} << 20;

  // Keeps them in the folders "s" and "l" of `cacheDir`. `files` and `decoder` outlive the object.
  Thumbnails(FileSystem &files, const std::filesystem::path &cacheDir, PictureDecoder &decoder,
             std::int64_t mostBytes = kMostBytes);
  // Waits for the upkeep under way.
  ~Thumbnails() = default;
  Thumbnails(const Thumbnails &) = delete;
  Thumbnails &operator=(const Thumbnails &) = delete;

  [[nodiscard]] ThumbnailService &small() { return small_; }
  [[nodiscard]] ThumbnailService &large() { return large_; }

  // Removes what is stored of those of `photos` that are gone, in all their versions, soon. A photo whose
  // folder is gone as well may lie on a drive that was unplugged: it is left to `tidy`.
  void forget(std::vector<std::filesystem::path> photos);
  // Looks through the folder in which photos are saved, soon: removes what is stored of photos that are no
  // longer in it or have changed, and what was not used for the longest time where there is too much. Nothing
  // is taken for gone while `folder` cannot be read.
  void tidy(std::filesystem::path folder);

private:
  void trim();

  const std::int64_t mostBytes_;
  ThumbnailService small_;
  ThumbnailService large_;
  SerialQueue queue_{"fennick.thumbs"}; // last: what runs on it uses the above
};

} // namespace fennick
