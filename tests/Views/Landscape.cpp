#include "tests/Views/Landscape.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace quarrow::test {

namespace {

// A range of hills whose crest lies around `height`, as a share of the picture.
QPainterPath hills(const QSize &size, double height, double swing, double phase) {
  const double width = size.width();
  const double below = size.height();
  QPainterPath path(QPointF(0, below));
  for (int x = 0; x <= 64; ++x) {
    const double at = x / 64.0;
    const double wave = std::sin(at * 5 + phase) + 0.5 * std::sin(at * 11 + phase * 2);
    path.lineTo(at * width, below * (height + swing * wave));
  }
  path.lineTo(width, below);
  return path;
}

} // namespace

std::string landscape(const QSize &size, int variant) {
  const double phase = variant * 1.7;
  const auto turned = [&](const QColor &colour) {
    return QColor::fromHsv((colour.hsvHue() + variant * 37) % 360, colour.hsvSaturation(), colour.value());
  };
  QImage picture(size, QImage::Format_RGB32);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient sky(0, 0, 0, size.height() * 0.7);
  sky.setColorAt(0, turned("#3E6C8F"));
  sky.setColorAt(0.6, turned("#E3A26F"));
  sky.setColorAt(1, turned("#F6D9A8"));
  painter.fillRect(picture.rect(), sky);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor("#FFF2CF"));
  const double sun = std::min(size.width(), size.height()) * 0.07;
  painter.drawEllipse(QPointF(size.width() * (0.3 + 0.1 * (variant % 5)), size.height() * 0.46), sun, sun);
  const QColor ranges[] = {turned("#8C7F93"), turned("#5B6C80"), turned("#33495A"), turned("#1C2B33")};
  for (int range = 0; range < 4; ++range)
    painter.fillPath(hills(size, 0.56 + 0.1 * range, 0.03 + 0.008 * range, phase + range * 2.3),
                     ranges[range]);
  painter.end();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  picture.save(&buffer, "JPEG", 90);
  return bytes.toStdString();
}

} // namespace quarrow::test
