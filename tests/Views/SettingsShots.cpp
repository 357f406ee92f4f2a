#include "tests/Views/Shots.h"

#include <QMetaObject>
#include <QQuickItem>

namespace quarrow::test {
namespace {

void openSheet(QObject &window) {
  QMetaObject::invokeMethod(window.findChild<QObject *>("resetConfirmation"), "open");
}

void openChoice(QObject &window) {
  auto *choice = window.findChild<QQuickItem *>("hotKey");
  choice->forceActiveFocus(Qt::TabFocusReason);
  QMetaObject::invokeMethod(choice->property("popup").value<QObject *>(), "open");
}

} // namespace

std::vector<Shot> settingsShots() {
  return {
      {.view = "SettingsWindow", .state = "fine"},
      {.view = "SettingsWindow",
       .state = "plenty",
       .arrange =
           [](Stage &stage) {
             plenty(stage);
             stage.setPort(8003);
           },
       .size = {600, 800}},
      {.view = "SettingsWindow", .state = "narrow", .arrange = plenty, .size = {380, 900}},
      {.view = "SettingsWindow", .state = "reset", .touch = openSheet},
      {.view = "SettingsWindow", .state = "choice", .touch = openChoice},
  };
}

} // namespace quarrow::test
