#include "tools/Screenshots/Shots.h"

#include "Quarrow/Views/Registration.h"

#include <QMetaObject>

namespace quarrow::test {
namespace {

using Arrange = std::function<void(Stage &)>;
using Touch = std::function<void(QObject &)>;

const QSize kWindow(900, 700);

Stage *onStage = nullptr;

PhotoActions &actions() { return *ActionsSingleton::instance; }

void several(Stage &stage) {
  stage.hang({"20240501_093000.jpg", "20240501_092300.heic", "20240501_091600.mov", "IMG_0412 七月旅行.png",
              "20240501_090200.jpg", "20240501_085500.jpg", "20240501_084800.jpg", "20240501_084100.jpg",
              "20240501_083400.jpg"});
  stage.select(stage.photoNames());
  onStage = &stage;
}

void one(Stage &stage) {
  stage.hang({"20240501_093000.jpg", "20240501_092300.heic"});
  stage.select({"20240501_093000.jpg"});
  onStage = &stage;
}

Touch invoke(const char *object, const char *method) {
  return [=](QObject &root) {
    auto *found = root.objectName() == object ? &root : root.findChild<QObject *>(object);
    QMetaObject::invokeMethod(found, method);
  };
}

// Opens a dialog and waits until the action in it is complete.
Touch in(const char *object, std::function<void()> act) {
  return [=](QObject &root) {
    invoke(object, "open")(root);
    act();
    onStage->awaitActions();
  };
}

void chooseNames() {
  actions().renaming()->setPrefix("海边-");
  actions().renaming()->setDigits(2);
}

Shot shot(const char *state, Arrange arrange, Touch touch, const QSize &size = kWindow) {
  return {.view = "ActionsLayer",
          .state = state,
          .arrange = std::move(arrange),
          .touch = std::move(touch),
          .size = size};
}

} // namespace

std::vector<Shot> actionsShots() {
  return {
      shot("menu", one, invoke("photoMenu", "open")),
      shot("menu-many", several, invoke("photoMenu", "open")),
      shot("rename", several, in("renameSheet", chooseNames)),
      shot("rename-problem", several, in("renameSheet", [] { actions().renaming()->setPrefix("海/边"); })),
      shot("rename-narrow", several, in("renameSheet", chooseNames), {380, 420}),
      shot("export", several, in("exportSheet", [] {})),
      shot("export-free", several,
           in("exportSheet",
              [] {
                actions().exporting()->setLongEdge(1800);
                actions().exporting()->setFormat("png");
                onStage->decoder.encodesHEIC = false;
              })),
      shot("export-narrow", several, in("exportSheet", [] {}), {380, 520}),
      shot("export-running", several,
           [](QObject &root) {
             in("exportSheet", [] {})(root);
             onStage->saveWithPhotos();
             actions().exporting()->apply(); // its end is not awaited
           }),
      shot("export-done", several,
           in("exportSheet",
              [] {
                onStage->saveWithPhotos();
                actions().exporting()->apply();
              })),
      shot("undo", several,
           [](QObject &) {
             actions().trash();
             onStage->awaitActions();
           }),
      shot("failures", several,
           [](QObject &) {
             onStage->decoder.setOriented(
                 fennick::test::FakeDecoder::kFault(fennick::PictureFault::unsupported));
             actions().rotate(PhotoActions::Clockwise);
             onStage->awaitActions();
           }),
      shot("many", several,
           [](QObject &root) {
             root.findChild<QObject *>("openMany")->setProperty("count", 24);
             invoke("openMany", "open")(root);
           }),
  };
}

} // namespace quarrow::test
