#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/Thumbnails.h"

#include <QImage>
#include <QString>

#include <filesystem>
#include <optional>

namespace quarrow {

// The pictures on the wall's tiles: squares cut from the thumbnails that the gallery makes as well. What is
// decoded in this process is only what the locked-down decoder has written. Any thread.
class WallThumbnails {
public:
  static constexpr const char *kProvider = "thumbs"; // the name under which views find them

  explicit WallThumbnails(fennick::Thumbnails &thumbnails) : thumbnails_(thumbnails) {} // outlives the object

  // "image://thumbs/…" with the file's path and what tells it from its earlier versions; empty for videos and
  // for pictures that are not decoded.
  [[nodiscard]] static QString address(const fennick::PhotoItem &item);

  // What follows "image://thumbs/" in the address.
  [[nodiscard]] static QString idOf(const fennick::PhotoItem &item);

  // Returns the middle of the picture as a square of `side` pixels with round corners; a null image if there
  // is none, and nullopt if the decoder is busy: ask again later. Blocks while the thumbnail is made.
  [[nodiscard]] std::optional<QImage> tile(const QString &id, int side);

private:
  [[nodiscard]] fennick::ThumbnailService::Result thumbnailFor(const std::filesystem::path &file, int side);

  fennick::Thumbnails &thumbnails_;
};

} // namespace quarrow
