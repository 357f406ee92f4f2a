#include "Quarrow/Look/LookWords.h"

#include "FennickCore/Support/Text.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QStringList>
#include <QVariantMap>

#include <chrono>

namespace quarrow {

namespace {

QString tr(const char *text) { return QCoreApplication::translate("QuickLook", text); }

QString joined(const QStringList &parts) {
  QStringList said = parts;
  said.removeAll(QString());
  return said.join(QStringLiteral(" · "));
}

QString dateText(const QDateTime &date) {
  return date.isValid() ? date.toString(tr("yyyy年M月d日 HH:mm")) : QString();
}

QString dateText(fennick::Instant date) {
  const auto ms = std::chrono::floor<std::chrono::milliseconds>(date.time_since_epoch()).count();
  return ms == 0 ? QString() : dateText(QDateTime::fromMSecsSinceEpoch(ms));
}

QString pixelsText(const QSize &pixels) {
  return pixels.isEmpty() ? QString() : QStringLiteral("%1 × %2").arg(pixels.width()).arg(pixels.height());
}

// "1200 万像素"
QString millionsText(const QSize &pixels) {
  const double all = static_cast<double>(pixels.width()) * pixels.height();
  constexpr double kTenThousand = 1e4;
  constexpr double kLeast = 100; // in units of ten thousand; smaller pictures need no such text
  return all < kLeast * kTenThousand ? QString() : tr("%1 万像素").arg(qRound(all / kTenThousand));
}

// In the camera's local time, with its UTC offset if that is known.
QString takenText(const fennick::PictureDetails &details) {
  const auto taken = QDateTime::fromString(QString::fromStdString(details.taken), "yyyy-MM-dd HH:mm:ss");
  const QString offset = QString::fromStdString(details.offset);
  return dateText(taken) + (taken.isValid() && !offset.isEmpty() ? tr("（UTC%1）").arg(offset) : QString());
}

QString senderText(const fennick::PhotoOrigin &origin) {
  return origin.address.empty() ? tr("这台电脑") : tr("手机 %1").arg(QString::fromStdString(origin.address));
}

} // namespace

QString lookLine(const QSize &pixels, std::int64_t bytes, fennick::Instant date) {
  return joined({pixelsText(pixels), QString::fromStdString(fennick::fileSizeText(bytes)), dateText(date)});
}

QVariantList lookDetails(const QString &name, const QSize &pixels, const LookFacts &facts) {
  QVariantList rows;
  const auto add = [&](const QString &label, const QString &text) {
    if (!text.isEmpty())
      rows.append(QVariantMap{{"label", label}, {"text", text}});
  };
  const auto text = [](const std::string &value) { return QString::fromStdString(value); };
  add(tr("名称"), name);
  add(tr("像素"), joined({pixelsText(pixels), millionsText(pixels)}));
  add(tr("大小"), text(fennick::fileSizeText(facts.bytes)));
  add(tr("拍摄时间"), takenText(facts.details));
  add(tr("相机"), text(facts.details.camera));
  add(tr("镜头"), text(facts.details.lens));
  add(tr("曝光"), text(facts.details.exposure));
  add(tr("文件日期"), dateText(facts.date));
  if (!facts.origin)
    return rows;
  add(tr("收到时间"), dateText(facts.origin->receivedAt));
  add(tr("来自"), senderText(*facts.origin));
  if (text(facts.origin->name) != name)
    add(tr("原名"), text(facts.origin->name));
  add(tr("处理"), text(facts.origin->note));
  return rows;
}

} // namespace quarrow
