#include "FennickCore/Storage/PhotoOrder.h"
#include "tests/App/ControllerFixture.h"

namespace quarrow::test {
namespace {

using fennick::PictureFacts;
using fennick::PictureFault;
using fennick::PictureType;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;

const PictureFacts kLargePicture{
    .type = PictureType::jpeg, .width = 4000, .height = 3000, .orientation = 6, .hasMetadata = true};

TEST_F(ControllerTest, RunsTheConsequencesOfAnUploadInOrder) {
  const auto application = disk.write("viewer.desktop");
  store.update([&](auto &settings) {
    settings.naming = fennick::PrefixSequenceNaming{};
    settings.workflow = {.copyToClipboard = true,
                         .openWithAppBookmark = fennick::FolderBookmark::make(application).value(),
                         .playSound = true,
                         .notify = true};
  });
  start();
  desktop.take();
  EXPECT_THAT(upload(), HasSubstr("IMG_001.jpg"));
  EXPECT_THAT(received, IsEmpty());
  QObject::connect(&controller->server(), &ServerModel::lastNoteChanged,
                   [&] { desktop.asked.emplace_back("note"); });
  QObject::connect(&controller->server(), &ServerModel::sharedCountChanged,
                   [&] { desktop.asked.emplace_back("shared"); });
  runUntilReceived(1);
  EXPECT_THAT(desktop.take(),
              ElementsAre("flash", "shared", "copy IMG_001.jpg", "open IMG_001.jpg with viewer.desktop",
                          "sound", "notify 收到照片: IMG_001.jpg · 12 字节", "note"));
  EXPECT_THAT(logLines("open with"), ElementsAre("fennick: open with app failed no such program"));
  EXPECT_EQ(controller->server().lastNote(), "IMG_001.jpg：12 字节");
  queue.runUntil([&] { return !controller->library().recentlyAdded().empty(); });
  EXPECT_THAT(controller->library().items(), SizeIs(1));

  std::filesystem::remove(application); // a missing application is skipped
  change([](auto &settings) { settings.workflow.playSound = false; });
  desktop.take();
  upload();
  runUntilReceived(2);
  EXPECT_THAT(desktop.take(), ElementsAre("flash", "shared", "copy IMG_002.jpg",
                                          "notify 收到照片: IMG_002.jpg · 12 字节", "note"));
}

TEST_F(ControllerTest, DescribesTheProcessingOrWhyThereWasNone) {
  store.update([](auto &settings) {
    settings.naming = fennick::PrefixSequenceNaming{};
    settings.imaging.stripAllMetadata = true;
  });
  decoder.setFacts(kLargePicture);
  start();
  upload();
  runUntilReceived(1);
  decoder.setRendering(fennick::Rendering{.bytes = "smaller", .longEdge = 4000, .quality = 0.85});
  upload();
  runUntilReceived(2);
  change([](auto &settings) { settings.imaging = {}; });
  upload();
  runUntilReceived(3);
  EXPECT_THAT(notes(), ElementsAre("IMG_001.jpg：未处理 / skipped: 无法编码为 public.jpeg · "
                                   "元数据仍在文件中 / metadata still in the file",
                                   "IMG_002.jpeg：12 字节 → 4000px · q85 · 7 字节 · JPEG · 已转正 / rotated",
                                   "IMG_003.jpg：12 字节"));
}

TEST_F(ControllerTest, PrunesTheFolderToItsLimitAndForgetsTheRemovedPhotos) {
  store.update([](auto &settings) {
    settings.naming = fennick::PrefixSequenceNaming{};
    settings.folderLimit = 2;
  });
  start();
  upload();
  runUntilReceived(1);
  queue.runUntil([&] { return controller->library().items().size() == 1; });
  controller->selection().set({disk / "photos/IMG_001.jpg"});
  for (std::size_t i = 2; i <= 3; ++i) {
    upload();
    runUntilReceived(i);
  }
  queue.runUntil([&] { return controller->selection().files().empty(); });
  EXPECT_THAT(disk.names("photos"), ElementsAre(".fennick-incoming", "IMG_002.jpg", "IMG_003.jpg"));
  queue.runUntil([&] { return controller->library().items().size() == 2; });
  for (const auto &item : controller->library().items())
    EXPECT_NE(item.url.filename(), "IMG_001.jpg");

  change([&](auto &settings) { settings.autoPrune = false; });
  EXPECT_THAT(upload(), StartsWith("HTTP/1.1 403"));
  change([&](auto &settings) { settings.folderLimit.reset(); });
  upload();
  runUntilReceived(4);
  EXPECT_THAT(disk.names("photos"), SizeIs(4));
}

TEST_F(ControllerTest, ReceivesUploadsWhileAPictureIsProcessed) {
  store.update([](auto &settings) {
    settings.naming = fennick::PrefixSequenceNaming{};
    settings.imaging.maxPixels = 100;
  });
  options.hasPhotoWall = false; // keeps others from using the decoder
  decoder.setFacts(kLargePicture);
  start();
  decoder.hold();
  for (int i = 0; i < 20; ++i)
    EXPECT_THAT(upload(), StartsWith("HTTP/1.1 200"));
  decoder.awaitHeld(1);
  queue.run();
  EXPECT_THAT(received, IsEmpty());
  decoder.setFacts(fennick::test::FakeDecoder::kFault(PictureFault::timedOut));
  decoder.release();
  runUntilReceived(20);
  EXPECT_THAT(notes().front(), AllOf(StartsWith("IMG_001.jpg：未处理 / skipped: "), HasSubstr("超时")));
  EXPECT_THAT(notes().back(), StartsWith("IMG_020.jpg："));
  EXPECT_THAT(disk.names("photos"), SizeIs(21));
}

TEST_F(ControllerTest, ProcessesWaitingPhotosInTheNextRunWithItsSettings) {
  store.update([](auto &settings) {
    settings.naming = fennick::PrefixSequenceNaming{};
    settings.imaging.maxPixels = 100;
    settings.workflow.notify = true;
  });
  options.hasPhotoWall = false;
  decoder.setFacts(kLargePicture);
  start();
  decoder.hold();
  upload();
  upload();
  fennick::test::LoopbackClient phone("127.0.0.1", *controller->server().port());
  phone.send(fmt::format("POST /upload?k={} HTTP/1.1\r\nContent-Length: 1000\r\n\r\n{}",
                         controller->settings().accessKey(), kJPEG));
  queue.runUntil([&] { return controller->progress().counter().snapshot().uploads == 1; });
  decoder.awaitHeld(1);
  queue.advance(fennick::Seconds(1));
  EXPECT_EQ(controller->server().waitingNote(), "还有 2 张照片等待处理");
  decoder.setFacts(fennick::test::FakeDecoder::kFault(PictureFault::stopped));
  decoder.release();
  controller->stop();
  queue.run();
  EXPECT_THAT(received, IsEmpty());
  EXPECT_THAT(disk.names("photos/.fennick-incoming"), SizeIs(2)) << "records, and no part file";

  controller.reset();
  desktop.take();
  store.update([](auto &settings) { settings.imaging = {.format = fennick::OutputFormat::png}; });
  decoder.setFacts(kLargePicture);
  decoder.setRendering(fennick::Rendering{.bytes = "png", .longEdge = 4000, .quality = 1});
  start();
  runUntilReceived(2);
  EXPECT_THAT(disk.names("photos"), ElementsAre(".fennick-incoming", "IMG_001.png", "IMG_002.png"));
  EXPECT_THAT(disk.names("photos/.fennick-incoming"), IsEmpty());
  EXPECT_THAT(notes(), ElementsAre(StartsWith("IMG_001.png："), StartsWith("IMG_002.png：")));
  EXPECT_THAT(desktop.take(), Not(Contains(StartsWith("notify"))));
}

} // namespace
TEST_F(ControllerTest, RefreshesProgressOnlyDuringUploadsWhileWatched) {
  start();
  std::vector<qint64> shown;
  QObject::connect(&controller->progress(), &UploadProgress::changed,
                   [&] { shown.push_back(controller->progress().uploads()); });
  upload();
  runUntilReceived(1);
  EXPECT_THAT(shown, IsEmpty());
  controller->progress().setWatched(true);
  fennick::test::LoopbackClient phone("127.0.0.1", *controller->server().port());
  phone.send(fmt::format("POST /upload?k={} HTTP/1.1\r\nContent-Length: 12\r\n\r\n\xFF\xD8\xFF\xE0",
                         controller->settings().accessKey()));
  queue.runUntil([&] { return !shown.empty(); });
  phone.send(" a photo");
  EXPECT_THAT(phone.readToEnd(), StartsWith("HTTP/1.1 200"));
  queue.advance(fennick::Seconds(0.25));
  EXPECT_THAT(shown, ElementsAre(1, 0));
  queue.advance(fennick::Seconds(60));
  EXPECT_THAT(shown, SizeIs(2));
}

TEST_F(ControllerTest, MakesThumbnailsInAdvanceWhileTheGalleryIsOn) {
  decoder.setThumbnail(fennick::test::smallJPEG("thumbnail"));
  disk.write("photos/earlier.jpg", kJPEG);
  start();
  upload();
  runUntilReceived(1);
  controller->stop();
  EXPECT_THAT(disk.names("cache/thumbs/s"), IsEmpty());

  store.update([](auto &settings) { settings.galleryEnabled = true; });
  start();
  upload();
  runUntilReceived(2);
  while (disk.names("cache/thumbs/s").size() < 3 || disk.names("cache/thumbs/l").empty())
    std::this_thread::yield();
  controller->stop();
  EXPECT_THAT(disk.names("cache/thumbs/l"), ElementsAre(HasSubstr("_2.jpg")));
}

} // namespace quarrow::test
