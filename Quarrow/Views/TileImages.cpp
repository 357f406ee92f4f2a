#include "Quarrow/Views/TileImages.h"

#include <QQuickTextureFactory>
#include <QRunnable>

#include <algorithm>
#include <atomic>
#include <memory>

namespace quarrow {

namespace {

// Most of the work is done by the decoder's processes.
constexpr int kThreads = 2;

constexpr int kAgain = -1; // priority of retries: after all others

// One requested picture. The engine deletes it some time after `finished`. A busy decoder, which takes a
// while to refuse, is asked again.
class Response final : public QQuickImageResponse, public QRunnable {
public:
  Response(WallThumbnails &thumbnails, QThreadPool &pool, const std::atomic<bool> &ending, QString id,
           int side)
      : thumbnails_(thumbnails), pool_(pool), ending_(ending), id_(std::move(id)), side_(side) {
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
    auto tile = cancelled_ ? QImage() : thumbnails_.tile(id_, side_);
    if (!tile && !ending_)
      return pool_.start(this, kAgain);
    image_ = std::move(tile).value_or(QImage());
    emit finished();
  }

private:
  WallThumbnails &thumbnails_;
  QThreadPool &pool_;
  const std::atomic<bool> &ending_;
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
  ending_ = true;
  pool_.clear();
  pool_.waitForDone();
}

QQuickImageResponse *TileImages::requestImageResponse(const QString &id, const QSize &requestedSize) {
  auto response = std::make_unique<Response>(thumbnails_, pool_, ending_, id,
                                             std::max(requestedSize.width(), requestedSize.height()));
  pool_.start(response.get());
  return response.release(); // to the engine
}

} // namespace quarrow
