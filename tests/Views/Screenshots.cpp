// Shows every window in made-up states and writes what it looks like, light and dark, into a folder:
// `tevrin-screenshots FOLDER`. The scale is QT_SCALE_FACTOR's. With a second argument only the pictures whose
// name contains it.

#include "Quarrow/Views/Appearance.h"
#include "Quarrow/Views/Registration.h"
#include "Quarrow/Views/View.h"
#include "tests/Views/Stage.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <fmt/format.h>

#include <cstdio>
#include <functional>
#include <tuple>
#include <vector>

Q_IMPORT_QML_PLUGIN(TevrinPlugin)

namespace quarrow::test {
namespace {

const char *const kLongFolder =
    "/media/backup/Fotos und Videos/2026/家庭照片（爸妈手机备份）/七月旅行与生日聚会";
const char *const kLongNote =
    "20260714_183205_IMG_20260714_183204_HDR_portrait_original.jpg：已缩到长边 2048 像素，"
    "去掉位置信息，12.4 MB → 1.8 MB，原图保存在 originals";

struct Shot {
  const char *view; // a file of the module
  const char *state;
  std::function<void(Stage &)> arrange = [](Stage &) {};
  std::function<void(QObject &)> touch = [](QObject &) {};
  QSize size{}; // in place of the view's own
};

void set(QObject &root, const char *property, const QVariant &value) { root.setProperty(property, value); }

void trouble(Stage &stage) {
  stage.failCheck("连接超时");
  stage.blockByFirewall();
  stage.setError("找不到保存目录，照片暂时存不进来。请检查它所在的磁盘是否已连接。");
}

void plenty(Stage &stage) {
  stage.setAddresses({"wlan0", "enp3s0"});
  stage.setFolder(kLongFolder);
  stage.shell().setGalleryEnabled(true);
  stage.shareFolder("七月旅行与生日聚会", 1284);
  stage.receive(kLongNote);
  stage.receive(kLongNote);
  stage.beginUpload();
}

void received(Stage &stage) {
  stage.shell().setGalleryEnabled(true);
  stage.receive("20260714_183205.jpg：2.4 MB");
}

void offline(Stage &stage) {
  stage.setAddresses({});
  stage.failCheck("没有可用的局域网地址");
}

void openSheet(QObject &window) {
  QMetaObject::invokeMethod(window.findChild<QObject *>("resetConfirmation"), "open");
}

void openChoice(QObject &window) {
  auto *choice = window.findChild<QQuickItem *>("hotKey");
  choice->forceActiveFocus(Qt::TabFocusReason);
  QMetaObject::invokeMethod(choice->property("popup").value<QObject *>(), "open");
}

std::vector<Shot> shots() {
  return {
      {.view = "Panel", .state = "fine"},
      {.view = "Panel", .state = "received", .arrange = received},
      {.view = "Panel", .state = "offline", .arrange = offline},
      {.view = "Panel", .state = "trouble", .arrange = trouble},
      {.view = "Panel", .state = "plenty", .arrange = plenty},
      {.view = "Panel", .state = "low", .arrange = plenty, .size = {300, 420}},
      {.view = "MainWindow", .state = "fine"},
      {.view = "MainWindow", .state = "received", .arrange = received},
      {.view = "MainWindow", .state = "offline", .arrange = offline},
      {.view = "MainWindow", .state = "trouble", .arrange = trouble},
      {.view = "MainWindow", .state = "plenty", .arrange = plenty},
      {.view = "MainWindow", .state = "narrow", .arrange = plenty, .size = {420, 760}},
      {.view = "OnboardingWindow", .state = "1"},
      {.view = "OnboardingWindow", .state = "2", .touch = [](QObject &root) { set(root, "step", 1); }},
      {.view = "OnboardingWindow", .state = "3", .touch = [](QObject &root) { set(root, "step", 2); }},
      {.view = "OnboardingWindow",
       .state = "3-trouble",
       .arrange = trouble,
       .touch = [](QObject &root) { set(root, "step", 2); }},
      {.view = "OnboardingWindow",
       .state = "3-done",
       .touch =
           [](QObject &root) {
             set(root, "step", 2);
             ServerSingleton::instance->setLastNote("20260714_183205.jpg：2.4 MB");
             set(*root.findChild<QObject *>("scanStep"), "before", -1);
           }},
      {.view = "HelpWindow", .state = "fine", .size = {600, 1330}},
      {.view = "HelpWindow", .state = "trouble", .arrange = trouble},
      {.view = "HelpWindow", .state = "narrow", .arrange = trouble, .size = {380, 1700}},
      {.view = "LeaveWindow", .state = "fine"},
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

// The content of a view in a window of its size.
std::unique_ptr<QQuickWindow> show(QQmlEngine &engine, const Shot &shot) {
  auto made = makeView(engine, shot.view);
  if (!made) {
    fmt::print(stderr, "{}\n", made.error().toStdString());
    return nullptr;
  }
  auto root = std::move(*made);
  std::unique_ptr<QQuickWindow> window;
  if (auto *item = qobject_cast<QQuickItem *>(root.get())) {
    window = std::make_unique<QQuickWindow>();
    item->setParentItem(window->contentItem());
    root.release()->setParent(window.get());
    item->setSize(shot.size.isEmpty() ? QSizeF(300, 660) : shot.size);
    window->resize(item->size().toSize());
  } else {
    window.reset(qobject_cast<QQuickWindow *>(root.release()));
    if (!shot.size.isEmpty())
      window->resize(shot.size);
  }
  return window;
}

// Until the layouts have found their sizes and the changes of colour are over.
void settle() {
  for (int turn = 0; turn < 20; ++turn)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

// The panel's window takes the height that its content wants.
void fit(QQuickWindow &window, const Shot &shot) {
  auto *item = window.contentItem()->childItems().value(0);
  if (QByteArrayView(shot.view) != "Panel" || !shot.size.isEmpty())
    return;
  item->setHeight(item->implicitHeight());
  window.resize(item->size().toSize());
  settle();
}

bool take(const Shot &shot, bool dark, const QString &file) {
  Stage stage;
  stage.settle();
  shot.arrange(stage);
  QQmlEngine engine;
  std::ignore = makeView(engine, "Words"); // imports the module
  engine.singletonInstance<Appearance *>(qmlTypeId("Tevrin", 1, 0, "Appearance"))->pin(dark);
  const auto window = show(engine, shot);
  if (!window)
    return false;
  window->show();
  shot.touch(*window);
  settle();
  fit(*window, shot);
  return window->grabWindow().save(file);
}

int run(const QString &folder, const QString &only) {
  QDir().mkpath(folder);
  const auto scale = qRound(qGuiApp->devicePixelRatio());
  for (const auto &shot : shots())
    for (const bool dark : {false, true}) {
      const auto name =
          QString("%1-%2-%3@%4x.png").arg(shot.view, shot.state, dark ? "dark" : "light").arg(scale);
      if (name.contains(only) && !take(shot, dark, QDir(folder).filePath(name)))
        return 1;
    }
  return 0;
}

} // namespace
} // namespace quarrow::test

int main(int argc, char **argv) {
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argc, argv);
  const auto arguments = QGuiApplication::arguments();
  if (arguments.size() < 2) {
    fmt::print(stderr, "usage: tevrin-screenshots FOLDER [PART OF A NAME]\n");
    return 2;
  }
  return quarrow::test::run(arguments[1], arguments.value(2));
}
