// Measures the photo wall with ten thousand photos: the time until its window shows the first screen, the
// frame rate while scrolling through all it lists, and its memory with all of that visible. Thumbnails are on
// the disk; the window is rendered in software, off-screen.
//
//   wall_bench [ROUNDS]

#include "Quarrow/Views/Registration.h"
#include "Quarrow/Views/View.h"
#include "bench/Measure.h"
#include "tools/Stage/Stage.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickWindow>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

Q_IMPORT_QML_PLUGIN(TevrinPlugin)

namespace {

constexpr int kPhotos = 10'000;
constexpr int kStep = 30; // distance between frames in a quick scroll
constexpr QSize kScreen(1280, 800);
constexpr QSize kWall(2640, 2200); // room for five hundred of the smallest tiles

using quarrow::PhotoWall;

[[noreturn]] void fail(const QString &why) {
  fmt::print(stderr, "wall_bench: {}\n", why.toStdString());
  std::exit(EXIT_FAILURE);
}

bool isLoading(const QQuickItem &item) {
  constexpr int kLoading = 2; // Image.Loading
  if (item.inherits("QQuickImageBase") && item.property("status").toInt() == kLoading)
    return true;
  return std::ranges::any_of(item.childItems(), [](const auto *child) { return isLoading(*child); });
}

void paint(QQuickWindow &window) {
  QEvent update(QEvent::UpdateRequest);
  QCoreApplication::sendEvent(&window, &update);
}

// The program's main window in an engine of its own.
class Window {
public:
  explicit Window(QSize size) {
    auto view = quarrow::makeView(engine_, "MainWindow");
    if (!view)
      fail(view.error());
    window_.reset(qobject_cast<QQuickWindow *>(view->release()));
    window_->resize(size);
    window_->show();
    paint(*window_);
  }
  // Waits until every tile in and near the view has its picture, and they are painted.
  void awaitPictures() {
    do
      QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    while (isLoading(*window_->contentItem()));
    paint(*window_);
  }
  [[nodiscard]] QQuickWindow &window() { return *window_; }
  [[nodiscard]] QQuickItem &grid() { return *window_->findChild<QQuickItem *>("grid"); }

private:
  QQmlEngine engine_;
  std::unique_ptr<QQuickWindow> window_;
};

double processorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

// A wall with empty caches in memory, using the thumbnails on the disk.
class FreshWall {
public:
  explicit FreshWall(quarrow::test::Stage &stage)
      : before_(quarrow::WallSingleton::instance), thumbnails_(stage.anotherThumbnails()) {
    wall_ = stage.anotherWall(*thumbnails_);
    quarrow::WallSingleton::instance = wall_.get();
  }
  ~FreshWall() { quarrow::WallSingleton::instance = before_; }
  FreshWall(const FreshWall &) = delete;
  FreshWall &operator=(const FreshWall &) = delete;
  [[nodiscard]] PhotoWall &wall() { return *wall_; }

private:
  PhotoWall *before_;
  std::unique_ptr<fennick::Thumbnails> thumbnails_;
  std::unique_ptr<PhotoWall> wall_;
};

void warmUp(quarrow::test::Stage &stage) {
  FreshWall fresh(stage);
  for (const auto &item : fresh.wall().model()->items())
    std::ignore = fresh.wall().thumbnails().tile(quarrow::WallThumbnails::idOf(item), 168);
}

void opening(quarrow::test::Stage &stage, int rounds) {
  std::vector<double> first;
  std::vector<double> whole;
  std::vector<double> busy;
  for (int round = 0; round < rounds; ++round) {
    FreshWall fresh(stage);
    std::unique_ptr<Window> window;
    const double before = processorSeconds();
    const double shown = bench::secondsOf([&] { window = std::make_unique<Window>(kScreen); });
    whole.push_back(shown + bench::secondsOf([&] { window->awaitPictures(); }));
    busy.push_back(processorSeconds() - before);
    first.push_back(shown);
  }
  fmt::print(
      "  first picture of the window {:4.0f} ms, with every thumbnail {:4.0f} ms (aim: 300 ms; {:.0f} ms "
      "of processor)\n",
      1000 * bench::median(first), 1000 * bench::median(whole), 1000 * bench::median(busy));
}

void scrolling(quarrow::test::Stage &stage) {
  FreshWall fresh(stage);
  Window window(kScreen);
  window.awaitPictures();
  auto &grid = window.grid();
  const double end = grid.property("contentHeight").toDouble() - grid.height();
  std::vector<double> times;
  const double before = processorSeconds();
  for (double y = 0; y < end; y += kStep)
    times.push_back(bench::secondsOf([&] {
      grid.setProperty("contentY", y);
      paint(window.window());
      QCoreApplication::processEvents();
    }));
  const double busy = processorSeconds() - before;
  double total = 0;
  for (const double each : times)
    total += each;
  std::ranges::sort(times);
  const auto frames = static_cast<double>(times.size());
  fmt::print("  {} photos in {} frames: {:.0f} frames a second ({:.1f} ms of processor each); of a hundred "
             "frames the slowest takes {:.0f} ms\n",
             fresh.wall().count(), times.size(), frames / total, 1000 * busy / frames,
             1000 * times[times.size() * 99 / 100]);
}

long kilobytes(const char *file, const std::string &key) {
  std::ifstream in(file);
  for (std::string word; in >> word;)
    if (long value = 0; word == key && in >> value)
      return value;
  return 0;
}

void memory(quarrow::test::Stage &stage) {
  FreshWall fresh(stage);
  fresh.wall().setTileSize(PhotoWall::kSmallestTile);
  Window window(kWall);
  window.awaitPictures();
  const auto tiles = window.grid().property("contentItem").value<QQuickItem *>()->childItems().size();
  fmt::print(
      "  {} tiles on the screen: {:.0f} MiB resident, {:.0f} MiB without what other programs share (aim: "
      "250 MiB)\n",
      tiles, static_cast<double>(kilobytes("/proc/self/status", "VmRSS:")) / 1024,
      static_cast<double>(kilobytes("/proc/self/smaps_rollup", "Pss:")) / 1024);
}

} // namespace

int main(int argc, char *argv[]) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  const QGuiApplication application(argc, argv);
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
  quarrow::test::Stage stage;
  stage.reset();
  QStringList names;
  for (int i = 0; i < kPhotos; ++i)
    names << QString("IMG_%1.jpg").arg(i, 5, 10, QChar('0'));
  const double listed = bench::secondsOf([&] { stage.fillWall(names); });
  warmUp(stage);
  fmt::print("The photo wall on {} photos ({:.1f} s to write and list them)\n", kPhotos, listed);
  opening(stage, rounds);
  scrolling(stage);
  memory(stage);
}
