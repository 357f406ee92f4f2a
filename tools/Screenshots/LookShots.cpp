#include "Quarrow/Views/Registration.h"
#include "tools/Screenshots/Shots.h"

#include <QMetaObject>
#include <QPointF>

#include <utility>

namespace quarrow::test {
namespace {

using Arrange = std::function<void(Stage &)>;
using Touch = std::function<void(QObject &)>;

const QSize kWindow(1000, 660);
const QSize kPhoto(4032, 3024);
const char *const kName = "20240501_092311.jpg";
const char *const kLongName =
    "20260714_183205_IMG_20260714_183204_HDR_portrait_七月旅行与生日聚会_original_edited.jpg";

void look(Stage &stage) {
  LookSingleton::instance->setFile(WallSingleton::instance->currentFile());
  LookSingleton::instance->setOpen(true);
  stage.awaitLook();
}

Arrange at(const char *name, const QSize &photo = kPhoto) {
  return [=](Stage &stage) {
    stage.hang({name, "20240501_091500.jpg", "20240501_090800.mov"}, photo);
    look(stage);
  };
}

void remembered(Stage &stage) {
  stage.hang({kName, "20240501_091500.jpg"});
  stage.rememberOrigin();
  look(stage);
}

void damaged(Stage &stage) {
  stage.hangBroken(kName);
  look(stage);
}

void importing(Stage &) { ImportsSingleton::instance->importFiles({"none"}); }

QObject *named(QObject &window, const char *name) { return window.findChild<QObject *>(name); }

void detail(QObject &window) { named(window, "quickLook")->setProperty("detailed", true); }

void zoom(QObject &window) {
  QMetaObject::invokeMethod(named(window, "zoom"), "zoomBy", Q_ARG(qreal, 4),
                            Q_ARG(QPointF, QPointF(300, 300)));
}

void reach(QObject &window) {
  if (auto *button = named(window, "next"))
    QMetaObject::invokeMethod(button, "forceActiveFocus", Q_ARG(Qt::FocusReason, Qt::TabFocusReason));
}

Shot shot(const char *state, Arrange arrange, Touch touch = [](QObject &) {}, const QSize &size = kWindow) {
  return {.view = "QuickLook",
          .state = state,
          .arrange = std::move(arrange),
          .touch = std::move(touch),
          .size = size};
}

} // namespace

std::vector<Shot> lookShots() {
  return {
      shot("landscape", at(kName)),
      shot("portrait", at(kName, {3024, 4032})),
      shot("panorama", at(kName, {16'000, 3'800})),
      shot("small", at(kName, {320, 240})),
      shot("next", at(kName), reach),
      shot("zoomed", at(kName), zoom),
      shot("details", remembered, detail, {1000, 860}),
      shot("long", at(kLongName), detail),
      shot("narrow", at(kLongName), detail, {420, 620}),
      shot("video", at("20240501_092311.mov")),
      shot("oversized", at(kName, {30'000, 20'000})),
      shot("damaged", damaged),
      {.view = "MainWindow", .state = "look", .arrange = at(kName)},
      {.view = "ImportBar", .state = "begins", .arrange = importing, .size = {360, 52}},
  };
}

} // namespace quarrow::test
