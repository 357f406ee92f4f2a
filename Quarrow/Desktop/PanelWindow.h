#pragma once

#include "Quarrow/Desktop/StatusItemController.h"
#include "Quarrow/Desktop/ViewMaker.h"

#include <QObject>
#include <QRect>

#include <functional>
#include <memory>
#include <optional>

class QQuickWindow;

namespace quarrow {

// The panel: a frameless window at the tray icon that takes focus at once and is destroyed when it closes.
// Main thread.
class PanelWindow final : public QObject, public StatusItemController::Panel {
  Q_OBJECT

public:
  // `iconPlace` returns the place of the tray icon, if it is known.
  PanelWindow(ViewMaker makeView, std::function<std::optional<QRect>()> iconPlace);
  ~PanelWindow() override;
  PanelWindow(const PanelWindow &) = delete;
  PanelWindow &operator=(const PanelWindow &) = delete;

  [[nodiscard]] bool isOpen() const override { return window_ != nullptr; }
  void open() override;
  Q_SLOT void close() override;
  [[nodiscard]] QQuickWindow *window() const; // null while it is closed

signals:
  // Another window got focus.
  void left();

private:
  class Window;
  class Close {
  public:
    void operator()(Window *window) const;
  };

  void place();

  const ViewMaker makeView_;
  const std::function<std::optional<QRect>()> iconPlace_;
  std::optional<QRect> icon_; // its place when the panel opened
  std::unique_ptr<Window, Close> window_;
};

} // namespace quarrow
