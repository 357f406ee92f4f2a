#include "Quarrow/Desktop/WindowSelfTest.h"

#include "tests/Support/FakeDecoder.h"
#include "tests/Support/ManualQueue.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace quarrow {
namespace {

using ::testing::HasSubstr;

// A desktop whose views are painted in two colours by default.
class WindowSelfTestTest : public ::testing::Test {
protected:
  [[nodiscard]] QByteArray source(const QString &name) const {
    if (const auto own = sources.find(name); own != sources.end())
      return own->second;
    return name == "Panel" ? "import QtQuick\nItem { signal dismissed; Rectangle { width: 9; height: 9; "
                             "color: 'red' } }"
                           : "import QtQuick\nWindow { width: 50; height: 50; Rectangle { width: 9; height: "
                             "9; color: 'red' } }";
  }
  std::unique_ptr<QObject> make(const QString &name) {
    QQmlComponent component(&engine);
    component.setData(source(name), QUrl::fromLocalFile("/nowhere/" + name + ".qml"));
    return std::unique_ptr<QObject>(component.create());
  }
  // Returns the error of the self-test; empty on success.
  std::string problem() {
    AppDesktop desktop({.mainQueue = queue,
                        .clock = queue.clock(),
                        .decoder = decoder,
                        .bus = QDBusConnection("none"),
                        .makeView = [this](const QString &name) { return make(name); }});
    const auto tested = testWindows(desktop);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return tested ? "" : tested.error();
  }

  std::map<QString, QByteArray> sources;
  QQmlEngine engine;
  fennick::test::ManualQueue queue;
  fennick::test::FakeDecoder decoder;
};

TEST_F(WindowSelfTestTest, FailsForViewsThatDoNotOpenOrWarn) {
  EXPECT_EQ(problem(), "");
  const std::pair<const char *, const char *> faults[] = {
      {"SettingsWindow", "import QtQuick\nNothing {}"},
      {"HelpWindow", "import QtQuick\nWindow { width: 50; height: 50 }"}, // a single colour
      {"Panel", "import QtQuick\nRectangle { signal dismissed; Text { text: 'a' + missing } }"},
  };
  for (const auto &[name, broken] : faults) {
    sources = {{name, broken}};
    EXPECT_THAT(problem(), HasSubstr(name)) << broken;
  }
}

} // namespace
} // namespace quarrow
