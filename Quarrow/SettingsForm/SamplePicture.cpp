#include "Quarrow/SettingsForm/SamplePicture.h"

#include <QFile>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <system_error>

namespace quarrow {

namespace {

constexpr int kWidth = 1200;
constexpr int kHeight = 900;

// A hill whose ridge runs through the three heights.
QPainterPath hill(int left, int middle, int right) {
  QPainterPath path(QPointF(0, kHeight));
  path.lineTo(0, left);
  path.quadTo(kWidth / 2.0, middle, kWidth, right);
  path.lineTo(kWidth, kHeight);
  path.closeSubpath();
  return path;
}

// The sun over two ridges of hills.
QImage landscape() {
  QImage picture(kWidth, kHeight, QImage::Format_RGB32);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QLinearGradient sky(0, 0, 0, kHeight);
  sky.setColorAt(0, QColor(0xBF, 0xDD, 0xE6));
  sky.setColorAt(1, QColor(0xF7, 0xEF, 0xDD));
  painter.fillRect(picture.rect(), sky);
  painter.setBrush(QColor(0xE8, 0xB6, 0x5A));
  painter.drawEllipse(QPointF(860, 270), 95, 95);
  painter.fillPath(hill(640, 330, 560), QColor(0x8F, 0xC1, 0xB7));
  painter.fillPath(hill(700, 820, 560), QColor(0x2F, 0x8E, 0x80));
  return picture;
}

} // namespace

std::optional<std::filesystem::path> samplePicture(const std::filesystem::path &folder) {
  auto file = folder / "sample.jpg";
  std::error_code ignored;
  if (std::filesystem::is_regular_file(file, ignored))
    return file;
  std::filesystem::create_directories(folder, ignored);
  return landscape().save(QFile::decodeName(file.c_str()), "JPEG") ? std::optional(file) : std::nullopt;
}

} // namespace quarrow
