#include "tests/App/ControllerFixture.h"

#include <chrono>

namespace quarrow::test {
namespace {

using Operation = fennick::test::FaultyFileSystem::Operation;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char *kGoneNotice = "之前选择的保存目录已不可用，已改回默认目录。";

fennick::BookmarkData bookmarkOf(const std::filesystem::path &folder) {
  return fennick::FolderBookmark::make(folder).value();
}

class ControllerFaults : public ControllerTest {
protected:
  [[nodiscard]] std::string error() { return controller->server().error().value_or("none"); }
  // What the next start would find.
  [[nodiscard]] fennick::AppSettings stored() {
    fennick::FilePreferences fresh(disk / "state/preferences.json");
    return fennick::SettingsStore(fresh).settings();
  }
};

TEST_F(ControllerFaults, AChosenFolderThatIsGoneGivesWayToTheDefaultOneAndThePersonIsTold) {
  options.saveFolder.reset();
  options.defaultFolder = disk / "default/fennick";
  const auto chosen = disk.makeFolder("chosen");
  store.update([&](auto &settings) { settings.saveFolderBookmark = bookmarkOf(chosen); });
  start();
  upload();
  EXPECT_THAT(disk.names("chosen"), SizeIs(2));

  controller.reset();
  std::filesystem::remove_all(chosen);
  start();
  EXPECT_EQ(error(), kGoneNotice); // still there though the server has started since
  EXPECT_EQ(controller->server().saveFolder(), options.defaultFolder);
  EXPECT_EQ(stored().saveFolderBookmark, std::nullopt);
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
  EXPECT_THAT(disk.names("default/fennick"), SizeIs(2));

  const auto next = disk.makeFolder("next");
  controller->chooseSaveFolder(disk / "nowhere");
  EXPECT_EQ(error(), "无法记住该目录：该位置已不存在");
  controller->chooseSaveFolder(next);
  queue.run();
  EXPECT_EQ(error(), "none");
  upload();
  EXPECT_THAT(disk.names("next"), SizeIs(2));
  queue.runUntil([&] { return controller->library().items().size() == 1; });
}

TEST_F(ControllerFaults, AFolderThatCannotBeMadeIsSaidAndComesBackWithoutARestart) {
  files.failAlways(Operation::createDirectories, EROFS);
  start();
  EXPECT_THAT(error(), StartsWith("无法创建保存目录："));
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 500"));
  files.mend(Operation::createDirectories);
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
  queue.runUntil([&] { return !controller->server().error(); });
}

TEST_F(ControllerFaults, AnUnpluggedDriveIsSaidAndServedAgainWhenItIsBack) {
  options.saveFolder = disk / "media/drive/photos";
  start();
  upload();
  queue.runUntil([&] { return controller->library().items().size() == 1; });

  std::filesystem::rename(disk / "media/drive", disk / "unplugged");
  files.failAlways(Operation::createDirectories, EACCES); // a mount point's folder is not the person's
  queue.runUntil([&] { return controller->server().error().has_value(); });
  EXPECT_THAT(error(), HasSubstr("找不到保存目录"));
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 500"));
  queue.runUntil([&] {
    queue.advance(fennick::Seconds(1));
    return controller->library().items().empty();
  });

  files.mend(Operation::createDirectories);
  std::filesystem::rename(disk / "unplugged", disk / "media/drive");
  queue.runUntil([&] {
    queue.advance(fennick::Seconds(1));
    return !controller->server().error() && controller->library().items().size() == 1;
  });
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
}

TEST_F(ControllerFaults, AClockSetBackAnHourCostsNoPhotoItsNameOrItsTurn) {
  start();
  upload();
  runUntilReceived(1);
  queue.clock().advance(fennick::Seconds(3600));
  upload();
  runUntilReceived(2);
  queue.clock().setCalendar(queue.clock().now() - std::chrono::hours(1));
  for (std::size_t i = 3; i <= 4; ++i) {
    EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
    runUntilReceived(i);
  }
  const auto nameOf = [&](std::size_t i) { return received[i].url.stem().string(); };
  EXPECT_EQ(nameOf(2), nameOf(0) + "_2");
  EXPECT_EQ(nameOf(3), nameOf(0) + "_3");
  EXPECT_THAT(disk.names("photos"), SizeIs(5));
}

TEST_F(ControllerFaults, ABanEndsWithItsTimeWhateverTheCalendarSays) {
  start();
  for (int i = 0; i < 10; ++i)
    EXPECT_THAT(ask("/?k=guess"), StartsWith("HTTP/1.1 403"));
  EXPECT_THAT(ask("/health"), StartsWith("HTTP/1.1 429"));
  queue.clock().setCalendar(queue.clock().now() + std::chrono::hours(1));
  EXPECT_THAT(ask("/health"), StartsWith("HTTP/1.1 429"));
  queue.clock().advance(fennick::Seconds(301)); // asleep or awake
  EXPECT_THAT(ask("/health"), StartsWith("HTTP/1.1 200"));
}

TEST_F(ControllerFaults, SettingsThatCannotBeStoredHoldForTheRunAndThePersonIsTold) {
  start();
  const auto file = disk / "state/preferences.json";
  std::filesystem::remove_all(disk / "state");
  disk.write("state", "a file in the folder's place");
  change([](auto &settings) { settings.naming = fennick::PrefixSequenceNaming{}; });
  EXPECT_THAT(error(), StartsWith("无法保存设置"));
  EXPECT_THAT(upload(), HasSubstr("IMG_001.jpg"));

  std::filesystem::remove(disk / "state");
  change([](auto &settings) { settings.maxUploadBytes = 1000; });
  EXPECT_EQ(error(), "none");
  EXPECT_EQ(stored().naming, fennick::NamingPolicy(fennick::PrefixSequenceNaming{}));
}

TEST_F(ControllerFaults, WhatIsOverriddenForTheRunIsNeverStored) {
  options.overrides = [](auto &settings) { settings.maxUploadBytes = 20; };
  start();
  EXPECT_THAT(upload(std::string(kJPEG) + std::string(20, 'x')), StartsWith("HTTP/1.1 413"));
  change([](auto &settings) { settings.naming = fennick::PrefixSequenceNaming{}; });
  EXPECT_EQ(stored().maxUploadBytes, fennick::AppSettings().maxUploadBytes);
  EXPECT_EQ(stored().naming, fennick::NamingPolicy(fennick::PrefixSequenceNaming{}));
}

} // namespace
} // namespace quarrow::test
