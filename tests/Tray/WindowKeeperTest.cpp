#include "Quarrow/Desktop/WindowKeeper.h"

#include "Quarrow/Desktop/PanelWindow.h"

#include <QCoreApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace quarrow {
namespace {

// Minimal views for the keeper.
class WindowKeeperTest : public ::testing::Test {
protected:
  static QByteArray source(const QString &name) {
    if (name == "LeaveWindow")
      return "import QtQuick\nWindow { signal stay }";
    if (name == "Panel")
      return "import QtQuick\nItem { signal dismissed; implicitHeight: 300 }";
    return name == "MainWindow" || name == "HelpWindow" ? "import QtQuick\nWindow {}" : "broken";
  }
  std::unique_ptr<QObject> make(const QString &name) {
    made.append(name);
    QQmlComponent component(&engine);
    component.setData(source(name), QUrl());
    return std::unique_ptr<QObject>(component.create());
  }
  void TearDown() override {
    keeper.closeAll();
    deleteClosedWindows();
  }
  static void deleteClosedWindows() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

  QQmlEngine engine;
  QStringList made;
  const ViewMaker maker = [this](const QString &name) { return make(name); };
  WindowKeeper keeper{maker};
};

TEST_F(WindowKeeperTest, CreatesAWindowOnceAndDestroysItWhenClosed) {
  keeper.show(Desktop::Window::main);
  keeper.show(Desktop::Window::main);
  EXPECT_EQ(made, QStringList{"MainWindow"});
  const QPointer<QQuickWindow> window = keeper.window(Desktop::Window::main);
  ASSERT_TRUE(window);
  window->close();
  deleteClosedWindows();
  EXPECT_FALSE(window);
  keeper.show(Desktop::Window::main);
  EXPECT_NE(keeper.window(Desktop::Window::main), nullptr);
  keeper.show(Desktop::Window::settings); // its view is broken
  EXPECT_EQ(keeper.window(Desktop::Window::settings), nullptr);
}

TEST_F(WindowKeeperTest, ResizesAndDestroysThePanel) {
  PanelWindow panel(maker, [] { return std::optional<QRect>(); });
  panel.open();
  ASSERT_TRUE(panel.isOpen());
  const QPointer<QQuickWindow> window = panel.window();
  EXPECT_EQ(window->size(), QSize(300, 300));
  auto *content = window->contentItem()->childItems().first();
  content->setImplicitHeight(350.5);
  EXPECT_EQ(window->size(), QSize(300, 351));
  QCoreApplication::processEvents();
  EXPECT_EQ(content->height(), 351);
  QMetaObject::invokeMethod(content, "dismissed");
  EXPECT_FALSE(panel.isOpen());
  deleteClosedWindows();
  EXPECT_FALSE(window);
}

} // namespace
} // namespace quarrow
