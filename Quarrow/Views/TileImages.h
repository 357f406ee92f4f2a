#pragma once

#include "Quarrow/Wall/WallThumbnails.h"

#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <atomic>

namespace quarrow {

// Provides the pictures of the wall's tiles, "image://thumbs/…", asynchronously. Requests of tiles that were
// scrolled away are dropped. Any thread.
class TileImages final : public QQuickAsyncImageProvider {
public:
  // `thumbnails` outlives the object.
  explicit TileImages(WallThumbnails &thumbnails);
  ~TileImages() override; // waits for pictures in progress
  TileImages(const TileImages &) = delete;
  TileImages &operator=(const TileImages &) = delete;

  QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

private:
  WallThumbnails &thumbnails_;
  std::atomic<bool> ending_ = false;
  QThreadPool pool_; // last: what runs in it uses the others
};

} // namespace quarrow
