// Saves screenshots of every window in several states, light and dark: `tevrin-screenshots FOLDER`.
// QT_SCALE_FACTOR sets the scale. With a second argument only the pictures whose name contains it.

#include "Quarrow/Views/Appearance.h"
#include "Quarrow/Views/View.h"
#include "tools/Screenshots/Shots.h"
#include "tools/Stage/Stage.h"

#include <QDir>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <tuple>
#include <vector>

Q_IMPORT_QML_PLUGIN(TevrinPlugin)

namespace quarrow::test {
namespace {

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

bool isLoading(const QQuickItem &item) {
  constexpr int kLoading = 2; // Image.Loading
  if (item.inherits("QQuickImageBase") && item.property("status").toInt() == kLoading)
    return true;
  return std::ranges::any_of(item.childItems(), [](const auto *child) { return isLoading(*child); });
}

// Waits for layouts, colour changes and pictures.
void awaitRendering(const QQuickWindow &window) {
  for (int turn = 0; turn < 20 || isLoading(*window.contentItem()); ++turn)
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

// Gives the panel's window the height of its content.
void fit(QQuickWindow &window, const Shot &shot) {
  auto *item = window.contentItem()->childItems().value(0);
  if (QByteArrayView(shot.view) != "Panel" || !shot.size.isEmpty())
    return;
  item->setHeight(item->implicitHeight());
  window.resize(item->size().toSize());
  awaitRendering(window);
}

bool take(const Shot &shot, bool dark, const QString &file) {
  Stage stage;
  stage.reset();
  shot.arrange(stage);
  QQmlEngine engine;
  std::ignore = makeView(engine, "Label"); // imports the module
  engine.singletonInstance<Appearance *>(qmlTypeId("Tevrin", 1, 0, "Appearance"))->pin(dark);
  const auto window = show(engine, shot);
  if (!window)
    return false;
  window->show();
  awaitRendering(*window);
  shot.touch(*window);
  awaitRendering(*window);
  fit(*window, shot);
  return window->grabWindow().save(file);
}

int run(const QString &folder, const QString &only) {
  QDir().mkpath(folder);
  const auto scale = qRound(qGuiApp->devicePixelRatio());
  auto shots = serviceShots();
  std::ranges::move(actionsShots(), std::back_inserter(shots));
  std::ranges::move(settingsShots(), std::back_inserter(shots));
  std::ranges::move(lookShots(), std::back_inserter(shots));
  std::ranges::move(wallShots(), std::back_inserter(shots));
  for (const auto &shot : shots)
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
