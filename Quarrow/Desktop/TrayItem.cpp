#include "Quarrow/Desktop/TrayItem.h"

#include "Quarrow/Desktop/ColourScheme.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QScreen>

#include <utility>

namespace quarrow {

namespace {

// Some trays report a place for an icon that they do not show.
bool isOnScreen(const QRect &place) {
  return !place.isEmpty() && QGuiApplication::screenAt(place.center()) != nullptr;
}

// A click through the session bus has no position. Icons lie in bars, so a pointer elsewhere did not click
// it.
std::optional<QPoint> pointerInBar() {
  if (QGuiApplication::platformName() != "xcb")
    return std::nullopt;
  const QPoint pointer = QCursor::pos();
  const QScreen *screen = QGuiApplication::screenAt(pointer);
  if (screen == nullptr || screen->availableGeometry().contains(pointer))
    return std::nullopt;
  return pointer;
}

} // namespace

TrayItem::TrayItem(const QDBusConnection &bus, Actions actions)
    : actions_(std::move(actions)), watcher_(bus) {
  fillMenu();
}

void TrayItem::fillMenu() {
  menu_.addAction(tr("显示二维码"), this, [this] { actions_.togglePanel(); });
  menu_.addSeparator();
  menu_.addAction(tr("照片墙"), this, [this] { actions_.showMainWindow(); });
  menu_.addAction(tr("设置"), this, [this] { actions_.showSettings(); });
  menu_.addAction(tr("帮助"), this, [this] { actions_.showHelp(); });
  menu_.addSeparator();
  menu_.addAction(tr("退出"), this, [this] { actions_.quit(); });
}

void TrayItem::start() {
  connect(&watcher_, &TrayWatcher::changed, this, &TrayItem::appearOrVanish);
  connect(&watcher_, &TrayWatcher::foregroundChanged, this, &TrayItem::tint);
  appearOrVanish();
}

void TrayItem::appearOrVanish() {
  if (watcher_.hasTray() == isShown())
    return;
  if (isShown()) {
    icon_.reset();
  } else {
    icon_ = std::make_unique<QSystemTrayIcon>();
    tint();
    icon_->setContextMenu(&menu_);
    connect(icon_.get(), &QSystemTrayIcon::activated, this, &TrayItem::activated);
    icon_->show();
  }
  emit shownChanged();
}

void TrayItem::activated(QSystemTrayIcon::ActivationReason reason) {
  if (reason != QSystemTrayIcon::Trigger)
    return;
  const QScopedValueRollback clicked(clickedAt_, pointerInBar());
  actions_.togglePanel();
}

std::optional<QRect> TrayItem::place() const {
  if (isShown() && isOnScreen(icon_->geometry()))
    return icon_->geometry();
  if (clickedAt_)
    return QRect(*clickedAt_, QSize(1, 1));
  return std::nullopt;
}

void TrayItem::setFace(TrayFace face) {
  face_ = face;
  tint();
}

void TrayItem::tint() {
  if (!isShown())
    return;
  const QColor usual = trayTint(isDarkScheme(), qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
  icon_->setIcon(trayIcon(face_, watcher_.foreground().value_or(usual)));
  icon_->setToolTip(trayText(face_));
}

} // namespace quarrow
