#include "Quarrow/Views/AppIcon.h"

#include <QDir>
#include <QPainter>
#include <QPixmap>

namespace quarrow {

namespace {
constexpr qreal kSide = 32;
constexpr const char *kOwn = ":/qt/qml/Tevrin/icons/app.svg";
} // namespace

AppIcon::AppIcon(QQuickItem *parent) : QQuickPaintedItem(parent), icon_(kOwn) {
  setImplicitSize(kSide, kSide);
}

void AppIcon::setName(const QString &name) {
  if (name_ == name)
    return;
  name_ = name;
  icon_ = QDir::isAbsolutePath(name) ? QIcon(name) : QIcon::fromTheme(name);
  if (icon_.isNull() || icon_.availableSizes().isEmpty())
    icon_ = QIcon(kOwn);
  update();
  emit nameChanged();
}

void AppIcon::paint(QPainter *painter) {
  painter->setRenderHint(QPainter::SmoothPixmapTransform);
  const QSize pixels = (boundingRect().size() * painter->deviceTransform().m11()).toSize();
  const QPixmap drawn = icon_.pixmap(pixels, 1.0);
  painter->drawPixmap(boundingRect(), drawn, drawn.rect());
}

} // namespace quarrow
