#pragma once

#include "FennickCore/Storage/PhotoItem.h"
#include "FennickCore/Storage/Thumbnails.h"

#include <QImage>
#include <QString>

#include <filesystem>
#include <optional>

namespace quarrow {

// The pictures of the wall's tiles: squares cut from the gallery's thumbnails. This process decodes only what
// the sandboxed decoder has written. Any thread.
class WallThumbnails {
public:
  static constexpr const char *kProvider = "thumbs"; // the name under which views find them

  explicit WallThumbnails(fennick::Thumbnails &thumbnails) : thumbnails_(thumbnails) {} // outlives the object

  // Returns "image://thumbs/…" with the file's path and its version; empty for videos and pictures that are
  // not decoded.
  [[nodiscard]] static QString address(const fennick::PhotoItem &item);

  // Returns the part of the address after "image://thumbs/".
  [[nodiscard]] static QString idOf(const fennick::PhotoItem &item);

  // Returns the middle of the picture as a square of `side` pixels with round corners, a null image if there
  // is none, or nullopt if the decoder is busy: ask again later. Blocks while the thumbnail is made.
  [[nodiscard]] std::optional<QImage> tile(const QString &id, int side);

private:
  [[nodiscard]] fennick::ThumbnailService::Result thumbnailFor(const std::filesystem::path &file, int side);

  fennick::Thumbnails &thumbnails_;
};

} // namespace quarrow
