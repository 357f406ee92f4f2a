#pragma once

#include "Quarrow/App/Desktop.h"
#include "Quarrow/Desktop/ViewMaker.h"

#include <QObject>

#include <map>
#include <memory>

class QQuickWindow;
class QWindow;

namespace quarrow {

// Shows the window, restores it if it is minimised, raises it and gives it focus.
void bringToFront(QWindow &window);

// The program's windows, each created when it is first shown and destroyed when it is closed. If there is no
// tray icon, closing the last window first asks whether to continue in the background or to quit. Main
// thread.
class WindowKeeper final : public QObject {
  Q_OBJECT

public:
  explicit WindowKeeper(ViewMaker makeView);
  ~WindowKeeper() override;
  WindowKeeper(const WindowKeeper &) = delete;
  WindowKeeper &operator=(const WindowKeeper &) = delete;

  // Opens the window, or raises it.
  void show(Desktop::Window kind);
  // Closes it without a question.
  void close(Desktop::Window kind);
  Q_SLOT void closeAll(); // including the question
  // Returns the window while it is open.
  [[nodiscard]] QQuickWindow *window(Desktop::Window kind) const;

  // Whether closing the last window asks; initially it does not.
  void setAsksBeforeLast(bool asks) { asks_ = asks; }
  // The question while it is open.
  [[nodiscard]] QQuickWindow *question() const { return question_.get(); }

  bool eventFilter(QObject *object, QEvent *event) override;

private:
  // Deferred, because it may be handling the event that closed it.
  class CloseLater {
  public:
    void operator()(QQuickWindow *window) const;
  };
  using Window = std::unique_ptr<QQuickWindow, CloseLater>;

  [[nodiscard]] Window make(const QString &name) const;
  [[nodiscard]] bool isLast(const QObject *window) const;
  void ask();

  const ViewMaker makeView_;
  bool asks_ = false;
  std::map<Desktop::Window, Window> windows_; // the open ones
  Window question_;
};

} // namespace quarrow
