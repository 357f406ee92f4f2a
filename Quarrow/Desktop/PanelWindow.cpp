#include "Quarrow/Desktop/PanelWindow.h"

#include "Quarrow/Desktop/PanelGeometry.h"
#include "Quarrow/Desktop/WindowKeeper.h"
#include "Quarrow/Desktop/WindowX11.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScreen>

#include <cmath>
#include <tuple>
#include <utility>

namespace quarrow {

namespace {

QScreen *screenOf(const std::optional<QRect> &icon) {
  QScreen *screen = icon ? QGuiApplication::screenAt(icon->center()) : nullptr;
  return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

// Task bars must not list the panel. Other platforms do not list it.
void keepOutOfTaskBars(QWindow &window) {
  if (xcb_connection_t *connection = xServer())
    setWindowStates(connection, static_cast<std::uint32_t>(window.winId()),
                    {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"});
}

} // namespace

class PanelWindow::Window final : public QQuickWindow {
public:
  Window(PanelWindow &owner, std::unique_ptr<QQuickItem> content)
      : owner_(owner), content_(std::move(content)) {
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    setTitle("Tevrin");
    content_->setParentItem(contentItem());
    content_->setWidth(kPanelWidth);
    content_->setFocus(true);
    content_->ensurePolished();
  }

  [[nodiscard]] QQuickItem &content() { return *content_; }

protected:
  void resizeEvent(QResizeEvent *event) override {
    QQuickWindow::resizeEvent(event);
    content_->setSize(size());
  }
  void focusOutEvent(QFocusEvent *event) override {
    QQuickWindow::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
      emit owner_.left();
  }
  bool event(QEvent *event) override {
    const bool handled = QQuickWindow::event(event);
    if (event->type() == QEvent::Close && event->isAccepted())
      owner_.close();
    return handled;
  }

private:
  PanelWindow &owner_;
  const std::unique_ptr<QQuickItem> content_;
};

// It may be handling the event that closed it.
void PanelWindow::Close::operator()(Window *window) const {
  window->hide();
  window->deleteLater();
}

PanelWindow::PanelWindow(ViewMaker makeView, std::function<std::optional<QRect>()> iconPlace)
    : makeView_(std::move(makeView)), iconPlace_(std::move(iconPlace)) {}

PanelWindow::~PanelWindow() { close(); }

QQuickWindow *PanelWindow::window() const { return window_.get(); }

void PanelWindow::open() {
  if (!isOpen()) {
    auto view = makeView_("Panel");
    auto *content = qobject_cast<QQuickItem *>(view.get());
    if (content == nullptr)
      return;
    std::ignore = view.release();
    icon_ = iconPlace_();
    window_.reset(new Window(*this, std::unique_ptr<QQuickItem>(content)));
    connect(content, SIGNAL(dismissed()), this, SLOT(close()));
    connect(content, &QQuickItem::implicitHeightChanged, this, &PanelWindow::place);
    place();
    keepOutOfTaskBars(*window_);
  }
  bringToFront(*window_);
}

void PanelWindow::close() {
  if (Window *window = window_.release()) {
    window->content().disconnect(this);
    Close()(window);
  }
}

void PanelWindow::place() {
  if (!isOpen())
    return;
  const int fitting = static_cast<int>(std::ceil(window_->content().implicitHeight()));
  QScreen *screen = screenOf(icon_);
  if (screen == nullptr)
    return window_->resize(kPanelWidth, panelHeight(fitting, std::nullopt));
  const QRect available = screen->availableGeometry();
  const QSize size(kPanelWidth, panelHeight(fitting, available.height()));
  window_->setScreen(screen);
  window_->setMinimumSize(size);
  window_->setMaximumSize(size);
  window_->setGeometry(QRect(panelPlace(size, {screen->geometry(), available}, icon_), size));
}

} // namespace quarrow
