#include "Quarrow/Views/TileImages.h"

#include <QQuickTextureFactory>
#include <QRunnable>

#include <algorithm>
#include <atomic>
#include <memory>

namespace quarrow {

namespace {

// Most of the work is the decoder's, in processes of its own.
constexpr int kThreads = 2;

// One picture that was asked for. The engine that asked deletes it some time after `finished`.
class Response final : public QQuickImageResponse, public QRunnable {
public:
  Response(WallThumbnails &thumbnails, QThreadPool &pool, QString id, int side)
      : thumbnails_(thumbnails), pool_(pool), id_(std::move(id)), side_(side) {
    setAutoDelete(false);
  }

  [[nodiscard]] QQuickTextureFactory *textureFactory() const override {
    return QQuickTextureFactory::textureFactoryForImage(image_);
  }
  [[nodiscard]] QString errorString() const override {
    return image_.isNull() ? QStringLiteral("no thumbnail") : QString();
  }
  void cancel() override {
    cancelled_ = true;
    if (pool_.tryTake(this))
      emit finished();
  }
  void run() override {
    if (!cancelled_)
      image_ = thumbnails_.tile(id_, side_);
    emit finished();
  }

private:
  WallThumbnails &thumbnails_;
  QThreadPool &pool_;
  const QString id_;
  const int side_;
  QImage image_; // read after `finished`
  std::atomic<bool> cancelled_ = false;
};

} // namespace

TileImages::TileImages(WallThumbnails &thumbnails) : thumbnails_(thumbnails) {
  pool_.setMaxThreadCount(kThreads);
}

TileImages::~TileImages() {
  pool_.clear();
  pool_.waitForDone();
}

QQuickImageResponse *TileImages::requestImageResponse(const QString &id, const QSize &requestedSize) {
  auto response = std::make_unique<Response>(thumbnails_, pool_, id,
                                             std::max(requestedSize.width(), requestedSize.height()));
  pool_.start(response.get());
  return response.release(); // to the engine
}

} // namespace quarrow
