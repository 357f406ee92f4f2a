#include "Quarrow/Look/QuickLook.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "tests/App/ControllerFixture.h"

#include <QBuffer>
#include <QFile>

namespace quarrow::test {
namespace {

using fennick::PictureFacts;
using fennick::PictureFault;
using fennick::test::FakeDecoder;
using ::testing::HasSubstr;
using ::testing::Not;

namespace fs = std::filesystem;

std::string jpegOf(int width, int height) {
  QImage picture(width, height, QImage::Format_RGB32);
  picture.fill(Qt::darkCyan);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  picture.save(&buffer, "JPEG");
  return bytes.toStdString();
}

PictureFacts factsOf(std::int64_t width, std::int64_t height) {
  return {
      .type = fennick::PictureType::jpeg, .frames = 1, .width = width, .height = height, .orientation = {}};
}

// A folder of photos, the last written first on the wall, and a quick look.
class QuickLookTest : public ControllerTest {
protected:
  QuickLookTest() {
    decoder.setFacts(factsOf(4000, 3000));
    decoder.setThumbnail(jpegOf(160, 120));
    make();
  }
  ~QuickLookTest() override { look.reset(); }

  fs::path add(const std::string &name) {
    const auto file = disk.write("photos/" + name);
    const fennick::Instant day(std::chrono::hours(24 * 365 * 50 + ++added_));
    EXPECT_TRUE(fennick::setModificationTime(file, day));
    return file;
  }
  void begin() {
    look.emplace(controller->library(), decoder, controller->thumbnails(), queue);
    controller->library().setFolder(disk / "photos");
    queue.runUntil([&] { return std::ssize(controller->library().items()) == added_; });
    look->setOpen(true);
  }
  void see(const fs::path &file) { look->setFile(QUrl::fromLocalFile(QFile::decodeName(file.c_str()))); }
  void await(QuickLook::Kind kind) {
    queue.runUntil([&] { return look->kind() == kind; });
  }
  void awaitDetails() {
    queue.runUntil([&] { return !look->details().isEmpty(); });
  }
  QString detail(const QString &label) const {
    for (const auto &row : look->details())
      if (row.toMap()["label"] == label)
        return row.toMap()["text"].toString();
    return {};
  }
  int decodings() const { return decoder.calls(); }

  std::optional<QuickLook> look;

private:
  int added_ = 0;
};

TEST_F(QuickLookTest, LoadsFullSizeOnlyWhenEnlarged) {
  const auto photo = add("a.jpg");
  begin();
  look->setShownPixels(100);
  see(photo);
  EXPECT_EQ(look->kind(), QuickLook::Loading);
  EXPECT_EQ(look->pixels(), QSize(4000, 3000)); // known from the wall
  await(QuickLook::Picture);
  EXPECT_EQ(look->picture().size(), QSize(160, 120));
  awaitDetails();
  queue.advance(fennick::Seconds(5));
  const int calls = decodings();

  decoder.setThumbnail(jpegOf(4000, 3000));
  look->setShownPixels(900);
  look->setShownPixels(4000);
  queue.advance(fennick::Seconds(0.25));
  queue.runUntil([&] { return look->picture().width() == 4000; });
  EXPECT_EQ(decodings(), calls + 1); // once, whichever request came first
  look->setShownPixels(100);
  EXPECT_EQ(look->picture().width(), 160); // better at small sizes

  see({});
  EXPECT_EQ(look->kind(), QuickLook::Nothing);
  EXPECT_TRUE(look->picture().isNull());
}

TEST_F(QuickLookTest, PreparesNeighbouringPictures) {
  const auto first = add("first.jpg");
  add("film.mov");
  const auto middle = add("middle.jpg");
  const auto last = add("last.jpg");
  begin();
  // Each round gives the neighbours a little more time.
  const auto isThereAtOnce = [&](const fs::path &file) {
    see(middle);
    await(QuickLook::Picture);
    awaitDetails();
    see(file);
    return look->kind() == QuickLook::Picture;
  };
  while (!isThereAtOnce(last) || !isThereAtOnce(first))
    continue;
}

TEST_F(QuickLookTest, DescribesFilesWithoutAPicture) {
  const auto film = add("film.mov");
  begin();
  see(film);
  EXPECT_EQ(look->kind(), QuickLook::Video);
  awaitDetails();
  EXPECT_EQ(decodings(), 0); // videos are not decoded
  EXPECT_THAT(look->line().toStdString(), Not(HasSubstr("×")));

  decoder.setFacts(factsOf(30'000, 30'000));
  const auto huge = add("huge.jpg");
  controller->library().noteAdded(huge);
  queue.runUntil([&] { return controller->library().items().size() == 2; });
  see(huge);
  EXPECT_EQ(look->kind(), QuickLook::Oversized);
  awaitDetails();
  EXPECT_EQ(look->kind(), QuickLook::Oversized);
  EXPECT_THAT(look->line().toStdString(), HasSubstr("30000 × 30000"));

  decoder.setFacts(PictureFacts{}); // the header cannot be read
  decoder.setThumbnail(FakeDecoder::kFault(PictureFault::undecodable));
  const auto broken = add("broken.jpg");
  controller->library().noteAdded(broken);
  queue.runUntil([&] { return controller->library().items().size() == 3; });
  see(broken);
  await(QuickLook::Damaged);
}

TEST_F(QuickLookTest, ReloadsARotatedPhoto) {
  const auto photo = add("a.jpg");
  begin();
  see(photo);
  await(QuickLook::Picture);
  awaitDetails();
  decoder.setFacts(factsOf(3000, 4000));
  decoder.setThumbnail(jpegOf(120, 160));
  std::vector<QSize> seen;
  QObject::connect(&*look, &QuickLook::pictureChanged, [&] { seen.push_back(look->picture().size()); });
  disk.write("photos/a.jpg", "turned around"); // with a later time
  controller->library().scan();
  queue.runUntil([&] { return look->picture().size() == QSize(120, 160); });
  EXPECT_THAT(seen, Not(::testing::Contains(QSize())));
  EXPECT_EQ(look->pixels(), QSize(3000, 4000));
}

TEST_F(QuickLookTest, ShowsDetailsAndTheOriginal) {
  const auto photo = add("a.jpg");
  disk.write("photos/originals/IMG_7.HEIC", "as it came");
  fennick::writeOrigin(photo, {.address = "192.168.1.5",
                               .name = "IMG_7.HEIC",
                               .receivedAt = fennick::Instant(std::chrono::hours(24 * 365 * 50)),
                               .note = "3.2 MB → 1600px",
                               .original = "IMG_7.HEIC"});
  decoder.setDetails(fennick::PictureDetails{.camera = "Apple iPhone 15",
                                             .taken = "2024-05-01 10:00:00",
                                             .offset = "+08:00",
                                             .exposure = "1/125 s"});
  begin();
  see(photo);
  awaitDetails();
  EXPECT_EQ(detail("相机"), "Apple iPhone 15");
  EXPECT_EQ(detail("拍摄时间"), "2024年5月1日 10:00（UTC+08:00）");
  EXPECT_EQ(detail("来自"), "手机 192.168.1.5");
  EXPECT_EQ(detail("原名"), "IMG_7.HEIC");
  EXPECT_EQ(detail("处理"), "3.2 MB → 1600px");
  EXPECT_EQ(detail("像素"), "4000 × 3000 · 1200 万像素");
  EXPECT_EQ(detail("镜头"), ""); // not stated

  ASSERT_TRUE(look->hasOriginal());
  decoder.setFacts(factsOf(8000, 6000));
  look->setShowsOriginal(true);
  awaitDetails();
  EXPECT_EQ(look->name(), "IMG_7.HEIC");
  EXPECT_EQ(look->pixels(), QSize(8000, 6000));
  look->setShowsOriginal(false);
  EXPECT_EQ(look->name(), "a.jpg");
  EXPECT_TRUE(look->hasOriginal());
}

TEST_F(QuickLookTest, DropsRequestsWhenClosed) {
  const auto photo = add("a.jpg");
  begin();
  decoder.hold();
  see(photo);
  decoder.awaitHeld(1);
  look->setOpen(false);
  decoder.release();
  look->setOpen(true);
  await(QuickLook::Picture);
  look->setOpen(false);
  EXPECT_TRUE(look->picture().isNull());
  EXPECT_EQ(look->kind(), QuickLook::Nothing);
}

} // namespace
} // namespace quarrow::test
