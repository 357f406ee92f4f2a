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

// How large a picture is when shown upright.
struct PictureSize {
  std::optional<std::int64_t> width;
  std::optional<std::int64_t> height;
  bool isOversized = false;
};

// Remembers the dimensions of pictures by path, size and modification time, so that looking through a folder
// again reads only what is new. One thread at a time.
class PictureSizes {
public:
  explicit PictureSizes(PictureDecoder &decoder) : decoder_(decoder) {} // `decoder` outlives the object

  // `status` is that of `file`. Blocks while the decoder reads.
  [[nodiscard]] PictureSize of(const std::filesystem::path &file, const FileStatus &status);
  // Whether the decoder was too busy to read one of them since the last call; it is shown without dimensions.
  [[nodiscard]] bool takeBusy() { return std::exchange(busy_, false); }
  // Forgets what was not asked for since the last call, once there is a lot of it.
  void tidy();

private:
  struct Known {
    std::int64_t bytes = 0;
    Instant modified;
    PictureSize size;
    bool settled = true; // false: a decoder ended over it once, and it is asked for again
    bool used = true;
  };

  PictureDecoder &decoder_;
  std::unordered_map<std::string, Known> known_; // by path
  bool busy_ = false;
};

} // namespace fennick
