#include "Quarrow/Desktop/WindowKeeper.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace quarrow {
namespace {

// Minimal views for the keeper.
class WindowKeeperTest : public ::testing::Test {
protected:
  static QByteArray source(const QString &name) {
    return name == "MainWindow" ? "import QtQuick\nWindow {}" : "broken";
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

} // namespace
} // namespace quarrow
