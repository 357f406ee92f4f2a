#include "Quarrow/Wall/WallThumbnails.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace quarrow {

namespace fs = std::filesystem;

namespace {

// How far a thumbnail may be enlarged before it looks soft.
constexpr double kMostEnlarged = 1.3;
// The radius of a tile's corners relative to its side.
constexpr double kRounding = 1.0 / 24;
constexpr auto kEncoding = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

QByteArray bytesOf(const std::string &text) {
  return QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
}

QSize sizeOf(const std::string &jpeg) {
  QByteArray bytes = bytesOf(jpeg);
  QBuffer buffer(&bytes);
  return QImageReader(&buffer, "jpeg").size();
}

bool isSoft(const QSize &size, int side) {
  return side > kMostEnlarged * std::min(size.width(), size.height());
}

// The JPEG decoder scales while it decodes, so that large pictures cost little.
QImage middleOf(const std::string &jpeg, int side) {
  QByteArray bytes = bytesOf(jpeg);
  QBuffer buffer(&bytes);
  QImageReader reader(&buffer, "jpeg");
  const QSize scaled = reader.size().scaled(side, side, Qt::KeepAspectRatioByExpanding);
  reader.setScaledSize(scaled);
  reader.setScaledClipRect(QRect((scaled.width() - side) / 2, (scaled.height() - side) / 2, side, side));
  return reader.read();
}

QImage withRoundCorners(const QImage &image) {
  QImage round(image.size(), QImage::Format_ARGB32_Premultiplied);
  round.fill(Qt::transparent);
  QPainter painter(&round);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(image);
  const double radius = image.width() * kRounding;
  painter.drawRoundedRect(QRectF(QPointF(0, 0), QSizeF(image.size())), radius, radius);
  return round;
}

} // namespace

QString WallThumbnails::address(const fennick::PhotoItem &item) {
  if (item.isVideo || item.isOversized || !item.pixelWidth)
    return {};
  return QStringLiteral("image://%1/%2").arg(QLatin1StringView(kProvider), idOf(item));
}

QString WallThumbnails::idOf(const fennick::PhotoItem &item) {
  return QStringLiteral("%1-%2-%3x%4/%5")
      .arg(item.date.time_since_epoch().count())
      .arg(item.bytes)
      .arg(item.pixelWidth.value_or(0))
      .arg(item.pixelHeight.value_or(0))
      .arg(QString::fromLatin1(bytesOf(item.url.native()).toBase64(kEncoding)));
}

std::optional<QImage> WallThumbnails::tile(const QString &id, int side) {
  const auto path = QByteArray::fromBase64(id.section('/', -1).toLatin1(), kEncoding);
  const auto thumbnail = thumbnailFor(fs::path(path.toStdString()), side);
  if (!thumbnail && thumbnail.error() == fennick::ThumbnailService::Missing::busy)
    return std::nullopt;
  if (!thumbnail || side <= 0)
    return QImage();
  const QImage middle = middleOf(**thumbnail, side);
  return middle.isNull() ? QImage() : withRoundCorners(middle);
}

// The small thumbnail of a very wide or tall picture is only a strip.
fennick::ThumbnailService::Result WallThumbnails::thumbnailFor(const fs::path &file, int side) {
  auto thumbnail = thumbnails_.small().thumbnail(file);
  if (!thumbnail || !isSoft(sizeOf(**thumbnail), side))
    return thumbnail;
  auto larger = thumbnails_.large().thumbnail(file);
  return larger ? larger : thumbnail;
}

} // namespace quarrow
