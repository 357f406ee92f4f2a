#include "tests/App/ControllerFixture.h"

namespace quarrow::test {
namespace {

using Operation = fennick::test::FaultyFileSystem::Operation;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr const char *kGoneNotice = "之前选择的保存目录已不可用，已改回默认目录。";

fennick::BookmarkData bookmarkOf(const std::filesystem::path &folder) {
  return fennick::FolderBookmark::make(folder).value();
}

class ControllerFaults : public ControllerTest {
protected:
  [[nodiscard]] std::string error() { return controller->server().error().value_or("none"); }
  [[nodiscard]] fennick::AppSettings stored() {
    fennick::FilePreferences fresh(disk / "state/preferences.json");
    return fennick::SettingsStore(fresh).settings();
  }
};

TEST_F(ControllerFaults, FallsBackToTheDefaultFolderAndReportsAMissingOne) {
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
  EXPECT_EQ(error(), kGoneNotice); // still shown although the server has started since
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

TEST_F(ControllerFaults, ReportsAFolderThatCannotBeCreatedAndRecoversWithoutARestart) {
  files.failAlways(Operation::createDirectories, EROFS);
  start();
  EXPECT_THAT(error(), StartsWith("无法创建保存目录："));
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 500"));
  files.mend(Operation::createDirectories);
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
  queue.runUntil([&] { return !controller->server().error(); });
}

// The drive is a link to a folder of another file system: without it the path leads to the system's disk, as
// with the empty folder of a mount point.
TEST_F(ControllerFaults, ReportsAnUnpluggedDriveAndUsesItAgainWhenItReturns) {
  const std::filesystem::path drive = std::filesystem::path("/dev/shm") / disk.path().filename();
  std::filesystem::create_directories(drive / "photos");
  if (fennick::fileIdentity(drive)->device == fennick::fileIdentity(disk.path())->device)
    GTEST_SKIP() << "there is only one file system here";
  const auto plugIn = [&] {
    std::filesystem::create_directory_symlink(drive, disk.makeFolder("media") / "drive");
  };
  plugIn();
  options.saveFolder.reset();
  options.defaultFolder = disk / "default";
  store.update(
      [&](auto &settings) { settings.saveFolderBookmark = bookmarkOf(disk / "media/drive/photos"); });
  start();
  upload();
  queue.runUntil([&] { return controller->library().items().size() == 1; });

  std::filesystem::remove(disk / "media/drive");
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 500")); // even before it was noticed
  queue.runUntil([&] { return controller->server().error().has_value(); });
  EXPECT_THAT(error(), HasSubstr("磁盘不见了"));
  change([](auto &settings) { settings.maxUploadBytes = 1000; }); // must not create anything
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 500"));
  EXPECT_THAT(disk.names("media"), IsEmpty());
  EXPECT_TRUE(stored().saveFolderBookmark);
  queue.runUntil([&] {
    queue.advance(fennick::Seconds(1));
    return controller->library().items().empty();
  });

  plugIn();
  queue.runUntil([&] {
    queue.advance(fennick::Seconds(1));
    return !controller->server().error() && controller->library().items().size() == 1;
  });
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
  EXPECT_THAT(disk.names("media/drive/photos"), SizeIs(3));
  std::filesystem::remove_all(drive);
}

TEST_F(ControllerFaults, KeepsNamesAndOrderWhenTheClockIsSetBack) {
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

TEST_F(ControllerFaults, KeepsSettingsForTheRunAndReportsThatTheyCannotBeStored) {
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

} // namespace
} // namespace quarrow::test
