#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/ThumbnailService.h"

#include <QImage>
#include <QString>

#include <cstdint>
#include <filesystem>

namespace quarrow {

// The pictures on the wall's tiles: squares cut from the thumbnails that the gallery makes as well. What is
// decoded in this process is only what the locked-down decoder has written. Any thread.
class WallThumbnails {
public:
  static constexpr const char *kProvider = "thumbs"; // the name under which views find them

  // `cacheDirectory` is the program's own, the one that the gallery uses. The others outlive the object.
  WallThumbnails(fennick::FileSystem &files, const std::filesystem::path &cacheDirectory,
                 fennick::PictureDecoder &decoder);

  // "image://thumbs/…" with the file's path and what tells it from its earlier versions; empty for videos and
  // for pictures that are not decoded.
  [[nodiscard]] static QString address(const fennick::PhotoItem &item);

  // What follows "image://thumbs/" in the address.
  [[nodiscard]] static QString idOf(const fennick::PhotoItem &item);

  // The middle of the picture as a square of `side` pixels with round corners; null when there is none.
  // Blocks while the thumbnail is made.
  [[nodiscard]] QImage tile(const QString &id, int side);

private:
  [[nodiscard]] fennick::ThumbnailService::Data thumbnailFor(const std::filesystem::path &file, int side);

  fennick::ThumbnailService small_;
  fennick::ThumbnailService large_;
};

} // namespace quarrow
