#include "tools/Stage/Landscape.h"

#include <QBuffer>
#include <QColor>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <iterator>

namespace quarrow::test {

namespace {

struct Light {
  const char *sky[3]; // from the top down to the hills
  const char *sun;
  const char *hills[4]; // from the farthest
};

// Times of day and seasons.
constexpr Light kLights[] = {
    {{"#3E6C8F", "#E3A26F", "#F6D9A8"}, "#FFF2CF", {"#8C7F93", "#5B6C80", "#33495A", "#1C2B33"}},
    {{"#4E9BD1", "#A9D3EA", "#E6F2F2"}, "#FFFBE8", {"#9DBFB4", "#6FA287", "#457F5C", "#2B5A40"}},
    {{"#2B2F55", "#7A5C86", "#E0A29A"}, "#FCE3C5", {"#7C6A8C", "#55507A", "#363A5E", "#21253F"}},
    {{"#7FB2C9", "#CFE3E6", "#F7F3E8"}, "#FFFFFF", {"#B9CBCB", "#8FAAB0", "#6A8892", "#486471"}},
    {{"#5A7FA8", "#E9C27B", "#FBE8B8"}, "#FFF6D8", {"#C79A5B", "#A9713D", "#7C4C2C", "#4C2F20"}},
    {{"#0F1B33", "#22385C", "#4A6488"}, "#EDF1F7", {"#3A4E6B", "#2A3C56", "#1B2A40", "#101B2B"}},
    {{"#C8D6DC", "#E4E7E4", "#F3EFE6"}, "#FBF7EC", {"#C2C9C4", "#9CA9A3", "#74857F", "#53645F"}},
    {{"#1F6F86", "#7CC0BF", "#F2D9B3"}, "#FFF1CC", {"#5FA3A3", "#3B8089", "#245D6B", "#153F4C"}},
    {{"#93506B", "#E58B77", "#FAD3A0"}, "#FFEFC9", {"#A3667A", "#7A4A68", "#523552", "#33233B"}},
};

// A range of hills whose crest is around `height`, relative to the picture.
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
  const Light &light = kLights[variant % static_cast<int>(std::size(kLights))];
  QImage picture(size, QImage::Format_RGB32);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient sky(0, 0, 0, size.height() * 0.7);
  sky.setColorAt(0, QColor(light.sky[0]));
  sky.setColorAt(0.6, QColor(light.sky[1]));
  sky.setColorAt(1, QColor(light.sky[2]));
  painter.fillRect(picture.rect(), sky);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(light.sun));
  const double sun = std::min(size.width(), size.height()) * 0.07;
  painter.drawEllipse(QPointF(size.width() * (0.3 + 0.1 * (variant % 5)), size.height() * 0.46), sun, sun);
  for (int range = 0; range < 4; ++range)
    painter.fillPath(hills(size, 0.56 + 0.1 * range, 0.03 + 0.008 * range, phase + range * 2.3),
                     QColor(light.hills[range]));
  painter.end();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  picture.save(&buffer, "JPEG", 90);
  return bytes.toStdString();
}

} // namespace quarrow::test
