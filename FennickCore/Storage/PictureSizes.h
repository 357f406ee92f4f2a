#pragma once

#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Platform/Files/FileStatus.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace fennick {

// The dimensions of a picture when shown upright.
struct PictureSize {
  std::optional<std::int64_t> width;
  std::optional<std::int64_t> height;
  bool isOversized = false;
};

// Remembers the dimensions of pictures by path, size and modification time, so that another scan reads only
// new files. One thread at a time.
class PictureSizes {
public:
  explicit PictureSizes(PictureDecoder &decoder) : decoder_(decoder) {} // `decoder` outlives the object

  // `status` is that of `file`. Blocks while the decoder reads.
  [[nodiscard]] PictureSize of(const std::filesystem::path &file, const FileStatus &status);
  // Returns whether the decoder was too busy for a picture since the last call; such a picture is shown
  // without dimensions.
  [[nodiscard]] bool takeBusy() { return std::exchange(busy_, false); }
  // Forgets entries that were not used since the last call, once there are many.
  void tidy();

private:
  struct Known {
    std::int64_t bytes = 0;
    Instant modified;
    PictureSize size;
    bool isFinal = true; // false: a decoder ended once while reading it, and it is read again
    bool used = true;
  };

  PictureDecoder &decoder_;
  std::unordered_map<std::string, Known> known_; // by path
  bool busy_ = false;
};

} // namespace fennick
