#pragma once

#include <QImage>
#include <QQmlEngine>
#include <QQuickItem>
#include <QVariant>

namespace quarrow {

// A picture that fills the item, drawn smoothly at any size. Unlike an image URL it changes without a blank
// frame. Main thread.
class Photo : public QQuickItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(QVariant image READ image WRITE setImage NOTIFY imageChanged) // a QImage

public:
  explicit Photo(QQuickItem *parent = nullptr);

  [[nodiscard]] QVariant image() const { return QVariant::fromValue(image_); }
  void setImage(const QVariant &image);

signals:
  void imageChanged();

protected:
  QSGNode *updatePaintNode(QSGNode *old, UpdatePaintNodeData *data) override;

private:
  QImage image_;
  bool isNew_ = false; // changed since it was drawn last
};

} // namespace quarrow
