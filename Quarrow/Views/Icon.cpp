#include "Quarrow/Views/Icon.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace quarrow {

namespace {
constexpr qreal kSide = 24; // of an icon in the units of its drawing
}

Icon::Icon(QQuickItem *parent) : QQuickPaintedItem(parent) {
  setImplicitSize(kSide, kSide);
  setAntialiasing(true);
}

void Icon::setName(const QString &name) {
  if (name_ == name)
    return;
  name_ = name;
  update();
  emit nameChanged();
}

void Icon::setColor(const QColor &color) {
  if (color_ == color)
    return;
  color_ = color;
  update();
  emit colorChanged();
}

void Icon::setColors(const QVariantMap &colors) {
  if (colors_ == colors)
    return;
  colors_ = colors;
  update();
  emit colorsChanged();
}

QByteArray Icon::drawing() const {
  QFile file(":/qt/qml/Tevrin/icons/" + name_ + ".svg");
  if (!file.open(QIODevice::ReadOnly))
    return {};
  QByteArray svg = file.readAll();
  svg.replace("currentColor", color_.name().toLatin1());
  for (auto each = colors_.begin(); each != colors_.end(); ++each)
    svg.replace("@" + each.key().toLatin1(), each.value().value<QColor>().name().toLatin1());
  return svg;
}

void Icon::paint(QPainter *painter) {
  QSvgRenderer renderer(drawing());
  if (!renderer.isValid())
    return;
  painter->setRenderHint(QPainter::Antialiasing);
  renderer.setAspectRatioMode(Qt::KeepAspectRatio);
  renderer.render(painter, boundingRect());
}

} // namespace quarrow
