#include "Quarrow/Wall/PhotoWall.h"
#include "FennickCore/Platform/Files/FileStatus.h"
#include "tests/App/Surroundings.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <optional>

namespace quarrow::test {
namespace {

namespace fs = std::filesystem;

// A wall with a real folder; the test controls the main thread's time.
class PhotoWallTest : public ::testing::Test, public IdleController<> {
protected:
  PhotoWallTest() { open(); }

  void open() {
    wall.emplace(PhotoWall::Parts{.library = library(),
                                  .selection = controller.selection(),
                                  .server = controller.server(),
                                  .commands = controller,
                                  .thumbnails = controller.thumbnails(),
                                  .preferences = preferences,
                                  .mainQueue = queue,
                                  .clock = queue.clock()});
  }
  // Writes the files, the first one the newest, and waits for the scan.
  void fill(const std::vector<std::string> &names) {
    for (std::size_t age = 0; age < names.size(); ++age) {
      const auto file = disk.write("photos/" + names[age], std::string(1000 * (age + 1), 'x'));
      const auto date = queue.clock().now() - std::chrono::seconds(age);
      ASSERT_TRUE(fennick::setModificationTime(file, date));
    }
    controller.library().setFolder(disk / "photos");
    awaitScan();
  }
  void awaitScan() {
    queue.runUntil([this] { return controller.library().isListed(); });
  }
  [[nodiscard]] std::string names() {
    std::string names;
    for (const auto &item : wall->model()->items())
      names += (names.empty() ? "" : " ") + item.name;
    return names;
  }
  [[nodiscard]] std::string selected() {
    std::string names;
    for (const auto &file : controller.selection().files())
      names += (names.empty() ? "" : " ") + file.filename().string();
    return names;
  }
  bool press(Qt::Key key, int modifiers = Qt::NoModifier, const QString &text = {}) {
    return wall->press(key, modifiers, text, 3, 2);
  }

  std::optional<PhotoWall> wall;
};

TEST_F(PhotoWallTest, deselectsPhotosThatTheFilterHides) {
  const QAbstractItemModelTester tester(wall->model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
  fill({"a.jpg", "b.mov", "c.jpg", "d.mp4"});
  EXPECT_EQ(wall->countText(), "2 张照片 · 2 段视频");
  wall->selectAll();
  EXPECT_EQ(wall->selectionText(), "已选 4 项 · 10 KB");
  wall->setFilter(PhotoWall::Videos);
  EXPECT_EQ(names(), "b.mov d.mp4");
  EXPECT_EQ(selected(), "b.mov d.mp4");
  EXPECT_EQ(wall->selectionText(), "已选 2 项 · 6 KB");
  EXPECT_EQ(wall->countText(), "2 段视频");
  wall->setFilter(PhotoWall::All);
  EXPECT_EQ(names(), "a.jpg b.mov c.jpg d.mp4");
  EXPECT_EQ(selected(), "b.mov d.mp4");
}

TEST_F(PhotoWallTest, movesFocusByRowsAndColumns) {
  fill({"a.jpg", "b.jpg", "c.jpg", "d.jpg", "e.jpg", "f.jpg", "g.jpg", "h.jpg"}); // three rows of 3, 3 and 2
  struct Step {
    Qt::Key key;
    int modifiers;
    int current;
    const char *selected;
  };
  for (const auto &[key, modifiers, current, expected] :
       {Step{Qt::Key_Right, 0, 0, "a.jpg"},
        Step{Qt::Key_Left, 0, 0, "a.jpg"},
        Step{Qt::Key_Up, 0, 0, "a.jpg"},
        Step{Qt::Key_Right, 0, 1, "b.jpg"},
        Step{Qt::Key_Right, 0, 2, "c.jpg"},
        Step{Qt::Key_Right, 0, 3, "d.jpg"},
        Step{Qt::Key_Up, 0, 0, "a.jpg"},
        Step{Qt::Key_End, 0, 7, "h.jpg"},
        Step{Qt::Key_Home, 0, 0, "a.jpg"},
        Step{Qt::Key_PageDown, 0, 6, "g.jpg"},
        Step{Qt::Key_PageUp, 0, 0, "a.jpg"},
        Step{Qt::Key_Right, Qt::ShiftModifier, 1, "a.jpg b.jpg"},
        Step{Qt::Key_Down, Qt::ShiftModifier, 4, "a.jpg b.jpg c.jpg d.jpg e.jpg"},
        Step{Qt::Key_Left, Qt::ControlModifier, 3, "a.jpg b.jpg c.jpg d.jpg e.jpg"},
        Step{Qt::Key_Space, Qt::ControlModifier, 3, "a.jpg b.jpg c.jpg e.jpg"},
        Step{Qt::Key_Escape, 0, 3, ""},
        Step{Qt::Key_Right, 0, 4, "e.jpg"},
        Step{Qt::Key_Right, 0, 5, "f.jpg"},
        Step{Qt::Key_Down, 0, 7, "h.jpg"}, // the next row is shorter
        Step{Qt::Key_Down, 0, 7, "h.jpg"}}) {
    EXPECT_TRUE(press(key, modifiers));
    EXPECT_EQ(wall->currentIndex(), current);
    EXPECT_EQ(selected(), expected);
  }
  EXPECT_TRUE(press(Qt::Key_A, Qt::ControlModifier));
  EXPECT_EQ(wall->selectedCount(), 8);
  EXPECT_TRUE(press(Qt::Key_F, Qt::NoModifier, "f"));
  EXPECT_EQ(selected(), "f.jpg");
  press(Qt::Key_Escape);
  EXPECT_FALSE(press(Qt::Key_Escape));
  EXPECT_FALSE(press(Qt::Key_F5));
  EXPECT_FALSE(press(Qt::Key_C, Qt::ControlModifier, "c"));
}

TEST_F(PhotoWallTest, keepsPlaceAndSelectionOfARenamedPhoto) {
  fill({"a.jpg", "b.jpg", "c.jpg"});
  const QSignalSpy removed(wall->model(), &QAbstractItemModel::rowsRemoved);
  wall->click(1, Qt::NoModifier);
  fs::rename(disk / "photos/b.jpg", disk / "photos/z.jpg");
  controller.library().rename(
      std::vector{fennick::Renaming{.from = disk / "photos/b.jpg", .to = disk / "photos/z.jpg"}});
  EXPECT_EQ(names(), "a.jpg z.jpg c.jpg");
  EXPECT_EQ(selected(), "z.jpg");
  EXPECT_EQ(wall->currentName(), "z.jpg");
  EXPECT_TRUE(removed.isEmpty());
}

TEST_F(PhotoWallTest, storesTheTileSize) {
  wall->setTileSize(240);
  wall->setTileSize(200);
  queue.advance(fennick::Seconds(1));
  open();
  EXPECT_EQ(wall->tileSize(), 200);
  wall->setTileSize(10'000);
  open(); // before it was stored
  EXPECT_EQ(wall->tileSize(), PhotoWall::kLargestTile);
}

TEST_F(PhotoWallTest, pastesPicturesAndFiles) {
  const auto paste = [&](const QString &format, const QByteArray &content) {
    auto data = std::make_unique<QMimeData>();
    data->setData(format, content);
    QGuiApplication::clipboard()->setMimeData(data.release());
    return wall->paste();
  };
  EXPECT_FALSE(paste("text/plain", "words"));
  EXPECT_FALSE(controller.imports().isRunning());
  const auto file = disk.write("elsewhere.png", "\x89PNG\r\n\x1A\n").string();
  for (const auto &[format, content] : {std::pair("image/png", std::string("\x89PNG\r\n\x1A\n")),
                                        std::pair("text/uri-list", "file://" + file)}) {
    EXPECT_TRUE(paste(format, QByteArray::fromStdString(content)));
    EXPECT_TRUE(controller.imports().isRunning());
    queue.runUntil([this] { return !controller.imports().isRunning(); });
  }
}

} // namespace
} // namespace quarrow::test
