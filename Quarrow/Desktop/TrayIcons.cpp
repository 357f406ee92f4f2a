#include "Quarrow/Desktop/TrayIcons.h"

#include <QCoreApplication>
#include <QFile>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>

namespace quarrow {

namespace {

const QColor kOnLight(0x1D, 0x1D, 0x1F);
const QColor kOnDark(0xF2, 0xF2, 0xF0);
constexpr const char *kDarkBars[] = {"GNOME", "Unity", "X-Cinnamon"};
constexpr int kSizes[] = {16, 22, 24, 32, 44, 48, 64};

QByteArray outline(TrayFace face) {
  QFile file(face == TrayFace::normal ? ":/tray/normal.svg" : ":/tray/received.svg");
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QPixmap drawn(QSvgRenderer &renderer, int size) {
  QPixmap pixmap(size, size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  renderer.render(&painter);
  return pixmap;
}

} // namespace

QString trayText(TrayFace face) {
  return face == TrayFace::normal ? QStringLiteral("Tevrin")
                                  : QCoreApplication::translate("StatusItemController", "已收到照片");
}

QIcon trayIcon(TrayFace face, const QColor &tint) {
  QSvgRenderer renderer(outline(face).replace("currentColor", tint.name().toLatin1()));
  QIcon icon;
  for (const int size : kSizes)
    icon.addPixmap(drawn(renderer, size));
  return icon;
}

QColor trayTint(bool darkScheme, const QString &desktop) {
  const QStringList names = desktop.split(u':');
  const bool darkBar = std::ranges::any_of(kDarkBars, [&](const char *name) { return names.contains(name); });
  return darkScheme || darkBar ? kOnDark : kOnLight;
}

} // namespace quarrow
