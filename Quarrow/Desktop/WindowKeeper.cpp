#include "Quarrow/Desktop/WindowKeeper.h"

#include <QCoreApplication>
#include <QEvent>
#include <QQuickWindow>

#include <tuple>
#include <utility>

namespace quarrow {

namespace {

QString nameOf(Desktop::Window kind) {
  switch (kind) {
  case Desktop::Window::main:
    return "MainWindow";
  case Desktop::Window::settings:
    return "SettingsWindow";
  case Desktop::Window::onboarding:
    return "OnboardingWindow";
  case Desktop::Window::help:
    break;
  }
  return "HelpWindow";
}

} // namespace

void bringToFront(QWindow &window) {
  if ((window.windowStates() & Qt::WindowMinimized) != 0)
    window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  window.requestActivate();
}

void WindowKeeper::CloseLater::operator()(QQuickWindow *window) const {
  window->hide();
  window->deleteLater();
}

WindowKeeper::WindowKeeper(ViewMaker makeView) : makeView_(std::move(makeView)) {}

WindowKeeper::~WindowKeeper() = default;

WindowKeeper::Window WindowKeeper::make(const QString &name) const {
  auto view = makeView_(name);
  auto *window = qobject_cast<QQuickWindow *>(view.get());
  if (window != nullptr)
    std::ignore = view.release();
  return Window(window);
}

void WindowKeeper::show(Desktop::Window kind) {
  auto &window = windows_[kind];
  if (!window) {
    window = make(nameOf(kind));
    if (!window)
      return close(kind);
    window->installEventFilter(this);
    connect(window.get(), &QWindow::visibleChanged, this, [this, kind](bool visible) {
      if (!visible)
        close(kind);
    });
  }
  bringToFront(*window);
}

void WindowKeeper::close(Desktop::Window kind) {
  const auto entry = windows_.extract(kind);
  if (!entry.empty() && entry.mapped())
    entry.mapped()->disconnect(this);
}

QQuickWindow *WindowKeeper::window(Desktop::Window kind) const {
  const auto found = windows_.find(kind);
  return found == windows_.end() ? nullptr : found->second.get();
}

bool WindowKeeper::isLast(const QObject *window) const {
  return windows_.size() == 1 && windows_.begin()->second.get() == window;
}

bool WindowKeeper::eventFilter(QObject *object, QEvent *event) {
  if (event->type() != QEvent::Close || !asks_ || QCoreApplication::closingDown() || !isLast(object))
    return false;
  event->ignore();
  ask();
  return true;
}

void WindowKeeper::ask() {
  if (!question_) {
    question_ = make("LeaveWindow");
    if (!question_)
      return QCoreApplication::exit();
    connect(question_.get(), SIGNAL(stay()), this, SLOT(closeAll()));
    connect(question_.get(), &QWindow::visibleChanged, this, [this](bool visible) {
      if (!visible)
        question_.reset();
    });
    question_->setTransientParent(windows_.begin()->second.get());
  }
  bringToFront(*question_);
}

void WindowKeeper::closeAll() {
  if (question_)
    question_->disconnect(this);
  question_.reset();
  while (!windows_.empty())
    close(windows_.begin()->first);
}

} // namespace quarrow
