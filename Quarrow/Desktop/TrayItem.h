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

// The program's icon and menu in the session's tray, whenever there is a tray. Main thread.
class TrayItem final : public QObject, public StatusItemController::Item {
  Q_OBJECT

public:
  // The actions of its menu.
  struct Actions {
    std::function<void()> togglePanel;
    std::function<void()> showMainWindow;
    std::function<void()> showSettings;
    std::function<void()> showHelp;
    std::function<void()> quit;
  };

  TrayItem(const QDBusConnection &bus, Actions actions);

  // Shows the icon from now on.
  void start();
  [[nodiscard]] bool isShown() const { return icon_ != nullptr; }
  // Returns the icon's place on the screen if it is known: some trays report it, and on X11 the pointer is
  // there after a click.
  [[nodiscard]] std::optional<QRect> place() const;

  void setFace(TrayFace face) override;
  // Adapts to changed colours of the session.
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
  std::unique_ptr<QSystemTrayIcon> icon_; // exists while there is a tray
};

} // namespace quarrow
