#include "tools/Screenshots/Shots.h"

#include "Quarrow/Views/Registration.h"

#include <QMetaObject>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>

#include <tuple>

namespace quarrow::test {
namespace {

QStringList day(int photos) {
  QStringList names;
  for (int i = 0; i < photos; ++i)
    names << (i % 11 == 4  ? QString("VID_%1.MOV")
              : i % 3 == 0 ? QString("IMG_%1.HEIC")
                           : QString("DSC0%1.jpg"))
                 .arg(4203 - 7 * i);
  return names;
}

void fill(Stage &stage, int photos) {
  stage.fillWall(day(photos));
  stage.asked();
}

void many(Stage &stage) { fill(stage, 120); }

void forms(Stage &stage) {
  stage.fillWall({"pano 西湖全景.jpg", "tall 长截图.png", "huge 扫描件.tif", "broken.jpg", "VID_2041.MOV",
                  "20260714_183205_IMG_20260714_183204_HDR_portrait_original_编辑过的版本.jpg", "IMG_1.jpg",
                  "七月旅行与生日聚会 爸爸妈妈和我们在海边的合影.heic", "IMG_2.jpg", "IMG_3.jpg"});
}

PhotoWall &wall() { return *WallSingleton::instance; }

void choose(std::initializer_list<int> places) {
  for (const int place : places)
    wall().click(place, Qt::ControlModifier);
}

void arranged(Stage &stage) {
  many(stage);
  wall().click(5, Qt::NoModifier);
  wall().moveSelectionTo(0);
}

QQuickItem &item(QObject &window, const char *name) { return *window.findChild<QQuickItem *>(name); }

} // namespace

std::vector<Shot> wallShots() {
  const auto selected = [](QObject &) { choose({1, 2, 5, 9}); };
  return {
      {.view = "MainWindow", .state = "wall", .arrange = many},
      {.view = "MainWindow", .state = "wall-selected", .arrange = many, .touch = selected},
      {.view = "MainWindow",
       .state = "wall-keyboard",
       .arrange = many,
       .touch =
           [](QObject &window) {
             item(window, "grid").forceActiveFocus();
             for (const auto key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Down})
               QTest::keyClick(qobject_cast<QWindow *>(&window), key);
           }},
      {.view = "MainWindow",
       .state = "wall-arranged",
       .arrange = arranged,
       .touch =
           [](QObject &window) {
             choose({2});
             QMetaObject::invokeMethod(window.findChild<QObject *>("photoMenu"), "open");
           }},
      {.view = "MainWindow", .state = "wall-arranged-narrow", .arrange = arranged, .size = {420, 640}},
      {.view = "MainWindow",
       .state = "wall-small",
       .arrange =
           [](Stage &stage) {
             many(stage);
             wall().setTileSize(PhotoWall::kSmallestTile);
           }},
      {.view = "MainWindow",
       .state = "wall-large",
       .arrange =
           [](Stage &stage) {
             forms(stage);
             wall().setTileSize(272);
           },
       .touch = [](QObject &) { choose({0, 1}); }},
      {.view = "MainWindow", .state = "wall-forms", .arrange = forms},
      {.view = "MainWindow", .state = "wall-few", .arrange = [](Stage &stage) { fill(stage, 3); }},
      {.view = "MainWindow",
       .state = "wall-arrival",
       .arrange =
           [](Stage &stage) {
             fill(stage, 40);
             stage.arrive("IMG_9000.jpg");
             stage.beginUpload();
           }},
      {.view = "MainWindow",
       .state = "wall-trouble",
       .arrange =
           [](Stage &stage) {
             fill(stage, 40);
             trouble(stage);
           }},
      {.view = "MainWindow",
       .state = "wall-missing",
       .arrange =
           [](Stage &stage) {
             stage.losePhotos();
             stage.setError("保存目录所在的磁盘不见了，照片暂时存不进来。请重新连接磁盘。");
           }},
      {.view = "MainWindow",
       .state = "wall-no-videos",
       .arrange =
           [](Stage &stage) {
             fill(stage, 3);
             wall().setFilter(PhotoWall::Videos);
           }},
      {.view = "MainWindow",
       .state = "wall-rename",
       .arrange = [](Stage &stage) { fill(stage, 12); },
       .touch =
           [](QObject &window) {
             item(window, "grid").forceActiveFocus();
             choose({3});
             QTest::keyClick(qobject_cast<QWindow *>(&window), Qt::Key_F2);
             item(window, "renameBox").setProperty("error", "已存在同名文件：IMG_4181.HEIC");
           }},
      {.view = "MainWindow",
       .state = "wall-code",
       .arrange = many,
       .touch = [](QObject &window) { QMetaObject::invokeMethod(&item(window, "code"), "clicked"); }},
      {.view = "MainWindow", .state = "wall-narrow", .arrange = many, .touch = selected, .size = {420, 640}},
  };
}

} // namespace quarrow::test
