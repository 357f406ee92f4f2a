#include "Quarrow/Views/Photo.h"

#include <QQuickWindow>
#include <QSGImageNode>

#include <memory>

namespace quarrow {

Photo::Photo(QQuickItem *parent) : QQuickItem(parent) {
  setFlag(ItemHasContents);
  setSmooth(true);
}

void Photo::setImage(const QVariant &image) {
  const auto next = image.value<QImage>();
  if (next.cacheKey() == image_.cacheKey())
    return;
  image_ = next;
  isNew_ = true;
  update();
  emit imageChanged();
}

// Runs on the rendering thread while the main thread waits.
QSGNode *Photo::updatePaintNode(QSGNode *old, UpdatePaintNodeData *) {
  std::unique_ptr<QSGNode> owned(old);
  if (image_.isNull())
    return nullptr;
  auto *node = dynamic_cast<QSGImageNode *>(owned.get());
  if (node == nullptr || isNew_) {
    node = window()->createImageNode();
    owned.reset(node); // deletes the old one and its texture
    node->setOwnsTexture(true);
    node->setTexture(window()->createTextureFromImage(image_, QQuickWindow::TextureHasMipmaps));
    isNew_ = false;
  }
  node->setFiltering(QSGTexture::Linear);
  node->setMipmapFiltering(QSGTexture::Linear);
  node->setRect(boundingRect());
  node->setSourceRect(QRectF(QPointF(), node->texture()->textureSize()));
  return owned.release();
}

} // namespace quarrow
