#pragma once

#include "Quarrow/Desktop/StatusItemController.h"
#include "Quarrow/Desktop/TrayWatcher.h"

#include <QMenu>
#include <QRect>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <optional>

namespace quarrow {

// The program's icon in the session's tray, with its menu, whenever there is a tray. Main thread.
class TrayItem final : public QObject, public StatusItemController::Item {
  Q_OBJECT

public:
  // What people can do there.
  struct Actions {
    std::function<void()> togglePanel;
    std::function<void()> showMainWindow;
    std::function<void()> showSettings;
    std::function<void()> showHelp;
    std::function<void()> quit;
  };

  TrayItem(const QDBusConnection &bus, Actions actions);

  // From now on the icon is in the tray.
  void start();
  [[nodiscard]] bool isShown() const { return icon_ != nullptr; }
  // Where it is on the screen, where that is known: some trays tell it, and on X11 the pointer that has just
  // clicked it stands there.
  [[nodiscard]] std::optional<QRect> place() const;

  void setFace(TrayFace face) override;
  // The session's colours have changed.
  void tint();

signals:
  void shownChanged();

private:
  void appearOrVanish();
  void activated(QSystemTrayIcon::ActivationReason reason);
  void fillMenu();

  const Actions actions_;
  TrayWatcher watcher_;
  QMenu menu_;
  TrayFace face_ = TrayFace::normal;
  std::optional<QPoint> clickedAt_;       // while a click is being answered
  std::unique_ptr<QSystemTrayIcon> icon_; // while there is a tray
};

} // namespace quarrow
