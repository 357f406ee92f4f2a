#include "tools/Screenshots/Shots.h"

#include "Quarrow/Views/Registration.h"

#include <QMetaObject>
#include <QQuickItem>
#include <QQuickWindow>

namespace quarrow::test {
namespace {

const char *const kLongName = "六月毕业典礼与家长会（全体照片，原图另存一份）2026 届三班和四班";

enum Page { General, Imaging, Workflow };

QObject &find(QObject &window, const char *name) { return *window.findChild<QObject *>(name); }

void show(QObject &window, Page page) { window.setProperty("page", page); }

std::function<void(QObject &)> at(Page page) {
  return [page](QObject &window) { show(window, page); };
}

void open(QObject &window, const char *name) { QMetaObject::invokeMethod(&find(window, name), "open"); }

void openChoice(QObject &window, const char *name) {
  auto *choice = window.findChild<QQuickItem *>(name);
  choice->forceActiveFocus(Qt::TabFocusReason);
  QMetaObject::invokeMethod(choice->property("popup").value<QObject *>(), "open");
}

// Enters an invalid value into the field, which keeps focus.
void type(QObject &window, const char *name, const QString &text) {
  auto *field = window.findChild<QQuickItem *>(name);
  field->forceActiveFocus(Qt::TabFocusReason);
  QMetaObject::invokeMethod(field, "taken", Q_ARG(QString, text));
  field->findChild<QObject *>("input")->setProperty("text", text);
}

void everythingOn(Stage &stage) {
  plenty(stage);
  stage.setPort(8003);
  auto &form = stage.form();
  form.setNumbered(true);
  form.setDateSubfolders(true);
  form.setSessionSubfolder("七月旅行");
  form.setLimitsFolder(true);
  form.setGalleryFolder("精选");
  form.imaging()->setPreset("small");
  form.imaging()->setQuality(60);
  form.imaging()->setKeepOriginal(true);
  form.imaging()->setStripAllMetadata(true);
  form.workflow()->setCopyToClipboard(true);
  form.workflow()->setNotify(true);
  stage.lookAhead();
}

void choseApplication(Stage &stage) {
  everythingOn(stage);
  stage.form().workflow()->chooseApplication("/etc/hostname", "GNU 图像处理程序");
  stage.hang({"IMG_2041.jpg"});
}

void latestPhoto(Stage &stage) {
  stage.hang({"七月旅行_042.jpg"});
  stage.decoder.setRendering(fennick::Rendering{.bytes = std::string(914'000, 'x'), .longEdge = 2048});
  stage.form().imaging()->setPreset("share");
  stage.form().imaging()->setStripAllMetadata(true);
  stage.lookAhead();
}

void tryAll(QObject &) {
  for (const auto action : {WorkflowForm::Copy, WorkflowForm::Open, WorkflowForm::Sound, WorkflowForm::Note})
    SettingsSingleton::instance->workflow()->tryOut(action);
}

void applications(Stage &stage) {
  stage.offerApplications(
      {"图像查看器", "GNU 图像处理程序", "darktable", "邮件", kLongName, "文件", "视频播放器"});
}

void wrong(QObject &window) {
  type(window, "sessionSubfolder", "../别处");
  type(window, "prefix", "2026/07");
  type(window, "port", "80");
}

void longNames(Stage &stage) {
  everythingOn(stage);
  stage.form().setSessionSubfolder(kLongName);
  stage.form().setPrefix(QString(kLongName).left(40));
  stage.form().setGalleryFolder(kLongName);
  stage.setError("无法创建保存目录：只读文件系统。请换一个目录，或者检查磁盘。");
  stage.lookAhead();
}

Shot shot(
    const char *state, Page page,
    std::function<void(Stage &)> arrange = [](Stage &stage) { stage.lookAhead(); }) {
  return {.view = "SettingsWindow", .state = state, .arrange = std::move(arrange), .touch = at(page)};
}

Shot sized(Shot shot, QSize size) {
  shot.size = size;
  return shot;
}

Shot touched(Shot shot, std::function<void(QObject &)> touch) {
  shot.touch = [page = shot.touch, touch = std::move(touch)](QObject &window) {
    page(window);
    touch(window);
  };
  return shot;
}

} // namespace

std::vector<Shot> settingsShots() {
  const QSize tall(640, 1780);
  const QSize narrow(380, 2100);
  return {
      shot("general", General),
      sized(shot("general-plenty", General, everythingOn), tall),
      sized(shot("general-narrow", General, everythingOn), narrow),
      sized(touched(shot("general-wrong", General, everythingOn), wrong), tall),
      sized(shot("general-long", General, longNames), tall),
      touched(shot("general-reset", General), [](QObject &window) { open(window, "resetConfirmation"); }),
      touched(shot("general-choice", General), [](QObject &window) { openChoice(window, "naming"); }),
      shot("imaging", Imaging),
      sized(shot("imaging-plenty", Imaging, everythingOn), {640, 1240}),
      sized(shot("imaging-narrow", Imaging, everythingOn), {380, 1500}),
      touched(shot("imaging-keyboard", Imaging),
              [](QObject &window) {
                window.findChild<QQuickItem *>("limitsPixels")->forceActiveFocus(Qt::TabFocusReason);
              }),
      shot("imaging-photo", Imaging, latestPhoto),
      shot("workflow", Workflow),
      touched(shot("workflow-plenty", Workflow, choseApplication), tryAll),
      touched(sized(shot("workflow-narrow", Workflow, choseApplication), {380, 740}), tryAll),
      touched(shot("workflow-chooser", Workflow, applications),
              [](QObject &window) { open(window, "applications"); }),
  };
}

} // namespace quarrow::test
