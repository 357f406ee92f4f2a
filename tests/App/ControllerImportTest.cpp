#include "FennickCore/Storage/PhotoOrigin.h"
#include "tests/App/ControllerFixture.h"

#include <cerrno>

namespace quarrow::test {
namespace {

using fennick::test::FaultyFileSystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace fs = std::filesystem;

class ControllerImportTest : public ControllerTest {
protected:
  ControllerImportTest() {
    files.setAvailableBytes(100'000'000'000);
    store.update([](auto &settings) {
      settings.naming = fennick::PrefixSequenceNaming{};
      settings.workflow = {
          .copyToClipboard = true, .openWithAppBookmark = {}, .playSound = true, .notify = true};
    });
  }

  void begin() {
    start();
    QObject::connect(&controller->imports(), &PhotoImport::finished,
                     [this](const QString &problem) { finished.push_back(problem.toStdString()); });
    desktop.take();
  }
  void bringIn(std::vector<fs::path> wanted) {
    controller->importFiles(std::move(wanted));
    awaitEnd();
  }
  void awaitEnd() {
    const auto count = finished.size();
    queue.runUntil([&] { return finished.size() > count; });
  }
  std::vector<std::string> photos() const {
    auto names = disk.names("photos");
    std::erase(names, ".fennick-incoming");
    return names;
  }

  const std::string jpeg{kJPEG};
  std::vector<std::string> finished; // the problems of each finished import
};

TEST_F(ControllerImportTest, CopiesDroppedFilesAndNamesThoseThatAreNotPhotos) {
  begin();
  const auto inside = disk.write("photos/trip/here.jpg", jpeg);
  const auto kept = disk.write("photos/originals/old.jpg", jpeg);
  disk.write("day/b.jpg", jpeg);
  disk.write("day/a.jpg", jpeg);
  disk.write("day/notes.txt");
  disk.write("day/below/deep.jpg", jpeg);
  const auto harbour = disk.write("harbour.JPG", jpeg);
  bringIn(
      {harbour, inside, disk.write("text.jpg", "no photo at all"), disk / "gone.jpg", disk / "day", kept});
  EXPECT_THAT(photos(), ElementsAre("IMG_001.jpg", "IMG_002.jpg", "IMG_003.jpg", "IMG_004.jpg", "originals",
                                    "trip")); // only files directly in the folder
  EXPECT_EQ(disk.read("photos/IMG_001.jpg"), kJPEG);
  EXPECT_TRUE(fs::exists(harbour));
  EXPECT_THAT(disk.names("photos/.fennick-incoming"), IsEmpty());
  EXPECT_THAT(finished, ElementsAre("没有导入：text.jpg（不是照片或视频）、gone.jpg（无法读取）"));
  EXPECT_EQ(controller->server().error(), finished.front());
  EXPECT_FALSE(controller->imports().isRunning());

  bringIn({inside});
  EXPECT_EQ(finished.back(), "");
  EXPECT_EQ(controller->server().error(), std::nullopt); // a success clears the error
}

TEST_F(ControllerImportTest, ProcessesAnImportWithoutNotifications) {
  decoder.setFacts(fennick::PictureFacts{
      .type = fennick::PictureType::jpeg, .width = 4000, .height = 3000, .hasMetadata = true});
  decoder.setRendering(fennick::Rendering{.bytes = "smaller", .longEdge = 4000, .quality = 0.85});
  store.update([](auto &settings) { settings.imaging.stripAllMetadata = true; });
  begin();
  controller->importPicture(jpeg, "剪贴板");
  awaitEnd();
  queue.runUntil([&] { return !controller->library().recentlyAdded().empty(); });
  EXPECT_THAT(photos(), ElementsAre("IMG_001.jpeg"));
  EXPECT_EQ(disk.read("photos/IMG_001.jpeg"), "smaller");
  EXPECT_THAT(desktop.take(), IsEmpty());
  EXPECT_THAT(received, IsEmpty());
  EXPECT_EQ(controller->server().lastNote(), std::nullopt);

  const auto origin = fennick::readOrigin(disk / "photos/IMG_001.jpeg");
  ASSERT_TRUE(origin);
  EXPECT_EQ(origin->address, "");
  EXPECT_EQ(origin->name, "剪贴板");
  EXPECT_THAT(origin->note, HasSubstr("12 字节 → 4000px"));

  upload();
  runUntilReceived(1);
  EXPECT_EQ(fennick::readOrigin(received.front().url)->address, "127.0.0.1");
}

TEST_F(ControllerImportTest, LeavesNothingAfterAFailedImport) {
  begin();
  const auto photo = disk.write("a.jpg", jpeg);
  const auto expectFailure = [&](const std::string &reason) {
    bringIn({photo});
    EXPECT_EQ(finished.back(), "没有导入：a.jpg（" + reason + "）");
    EXPECT_THAT(photos(), IsEmpty());
    EXPECT_THAT(disk.names("photos/.fennick-incoming"), IsEmpty());
  };
  files.failNext(FaultyFileSystem::Operation::write, ENOSPC);
  expectFailure("磁盘空间不足");
  files.failNext(FaultyFileSystem::Operation::sync, EIO);
  expectFailure("无法写入保存目录");
  files.setAvailableBytes(1'000'000'000);
  expectFailure("磁盘空间不足");
}

TEST_F(ControllerImportTest, StopsTheCurrentAndTheWaitingImports) {
  begin();
  const std::vector<fs::path> photos{disk.write("a.jpg", jpeg), disk.write("b.jpg", jpeg),
                                     disk.write("c.jpg", jpeg)};
  files.before(FaultyFileSystem::Operation::createFile, [&] {
    if (files.calls(FaultyFileSystem::Operation::createFile) == 2)
      controller->imports().stop();
  });
  bringIn(photos);
  EXPECT_THAT(finished, ElementsAre(""));
  EXPECT_THAT(this->photos(), ElementsAre("IMG_001.jpg"));
  EXPECT_THAT(disk.names("photos/.fennick-incoming"), IsEmpty());
  bringIn(photos); // the following ones are not imported
  EXPECT_THAT(this->photos(), ElementsAre("IMG_001.jpg", "IMG_002.jpg", "IMG_003.jpg", "IMG_004.jpg"));
}

} // namespace
} // namespace quarrow::test
