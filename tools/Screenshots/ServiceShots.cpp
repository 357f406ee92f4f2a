#include "tools/Screenshots/Shots.h"

#include "Quarrow/Views/Registration.h"

namespace quarrow::test {
namespace {

const char *const kLongFolder =
    "/media/backup/Fotos und Videos/2026/家庭照片（爸妈手机备份）/七月旅行与生日聚会";
const char *const kLongNote =
    "20260714_183205_IMG_20260714_183204_HDR_portrait_original.jpg：已缩到长边 2048 像素，"
    "去掉位置信息，12.4 MB → 1.8 MB，原图保存在 originals";

void set(QObject &root, const char *property, const QVariant &value) { root.setProperty(property, value); }

void received(Stage &stage) {
  stage.shell().setGalleryEnabled(true);
  stage.receive("20260714_183205.jpg：2.4 MB");
  stage.setWaiting(3);
}

void offline(Stage &stage) {
  stage.setAddresses({});
  stage.failCheck("没有可用的局域网地址");
}

} // namespace

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

std::vector<Shot> serviceShots() {
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
  };
}

} // namespace quarrow::test
