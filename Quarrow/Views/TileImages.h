#pragma once

#include "Quarrow/Wall/WallThumbnails.h"

#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <atomic>

namespace quarrow {

// Gives the views the pictures on the wall's tiles, "image://thumbs/…", without making anybody wait. What a
// tile that was scrolled away had asked for is not made. Any thread.
class TileImages final : public QQuickAsyncImageProvider {
public:
  // `thumbnails` outlives the object.
  explicit TileImages(WallThumbnails &thumbnails);
  ~TileImages() override; // waits for what is being made
  TileImages(const TileImages &) = delete;
  TileImages &operator=(const TileImages &) = delete;

  QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

private:
  WallThumbnails &thumbnails_;
  std::atomic<bool> ending_ = false;
  QThreadPool pool_; // last: what runs in it uses the others
};

} // namespace quarrow
