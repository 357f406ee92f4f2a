#pragma once

#include "Quarrow/App/Desktop.h"
#include "Quarrow/Desktop/ViewMaker.h"

#include <QObject>

#include <map>
#include <memory>

class QQuickWindow;
class QWindow;

namespace quarrow {

// Shows the window, gives it the keyboard and puts it above others, minimised or not.
void bringToFront(QWindow &window);

// The program's windows, each made when it is first asked for and gone, memory and all, when it is closed.
// Where people could not find the program again without a window, closing the last one asks first whether to
// go on in the background or to quit. Main thread.
class WindowKeeper final : public QObject {
  Q_OBJECT

public:
  explicit WindowKeeper(ViewMaker makeView);
  ~WindowKeeper() override;
  WindowKeeper(const WindowKeeper &) = delete;
  WindowKeeper &operator=(const WindowKeeper &) = delete;

  // Opens the window, or brings it to the front.
  void show(Desktop::Window kind);
  // Without asking anything.
  void close(Desktop::Window kind);
  Q_SLOT void closeAll(); // with the question
  // The window, while it is open.
  [[nodiscard]] QQuickWindow *window(Desktop::Window kind) const;

  // Whether closing the last window asks; from the start it does not.
  void setAsksBeforeLast(bool asks) { asks_ = asks; }
  // The question, while it is asked.
  [[nodiscard]] QQuickWindow *question() const { return question_.get(); }

  bool eventFilter(QObject *object, QEvent *event) override;

private:
  // It may be in the middle of an event that made it close.
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
  std::map<Desktop::Window, Window> windows_; // that are open
  Window question_;
};

} // namespace quarrow
