#include "Quarrow/Wall/WallThumbnails.h"
#include "tests/Support/FakeDecoder.h"
#include "tests/Support/FaultyFileSystem.h"
#include "tests/Support/TemporaryFolder.h"

#include <QBuffer>
#include <QColor>
#include <QPainter>
#include <gtest/gtest.h>

#include <cstdlib>
#include <mutex>
#include <vector>

namespace quarrow::test {
namespace {

// Red, with a green square in the middle.
std::string pictureOf(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::red);
  QPainter painter(&image);
  const int side = std::min(size.width(), size.height());
  painter.fillRect((size.width() - side) / 2, (size.height() - side) / 2, side, side, Qt::green);
  painter.end();
  QByteArray bytes;
  QBuffer buffer(&bytes);
  image.save(&buffer, "jpeg", 95);
  return bytes.toStdString();
}

fennick::PhotoItem pictureIn(const std::filesystem::path &file) {
  fennick::PhotoItem item;
  item.url = file;
  item.pixelWidth = 1;
  return item;
}

// Returns thumbnails of a picture, and records which were requested.
class Decoder final : public fennick::test::FakeDecoder {
public:
  explicit Decoder(QSize size) : size_(size) {}
  fennick::PictureResult<std::string> thumbnail(const std::filesystem::path &, std::int64_t maxPixel,
                                                double) override {
    const auto most = static_cast<int>(maxPixel);
    asked.push_back(most);
    return pictureOf(size_.scaled(most, most, Qt::KeepAspectRatio));
  }
  std::vector<int> asked;

private:
  const QSize size_;
};

TEST(WallThumbnailsTest, cutsTilesFromASharpEnoughThumbnail) {
  struct Case {
    QSize size;
    int side;
    std::vector<int> asked;
  };
  for (const auto &[size, side, asked] :
       {Case{{4000, 3000}, 168, {400}}, Case{{3000, 4000}, 336, {400}}, Case{{4000, 2000}, 168, {400}},
        Case{{6000, 1500}, 168, {400, 1600}}, Case{{1000, 9000}, 96, {400, 1600}},
        Case{{4000, 3000}, 640, {400, 1600}}}) {
    const fennick::test::TemporaryFolder disk;
    fennick::test::FaultyFileSystem files;
    Decoder decoder(size);
    fennick::Thumbnails made(files, disk / "cache", decoder);
    WallThumbnails thumbnails(made);
    const auto id = WallThumbnails::idOf(pictureIn(disk.write("a \xFF 照片.jpg")));
    const QImage tile = thumbnails.tile(id, side).value();
    EXPECT_EQ(tile.size(), QSize(side, side));
    EXPECT_EQ(decoder.asked, asked) << size.width();
    EXPECT_EQ(qAlpha(tile.pixel(0, 0)), 0); // rounded
    for (const QPoint at : {QPoint(side / 2, 3), QPoint(3, side / 2), QPoint(side - 4, side / 2)})
      EXPECT_GT(qGreen(tile.pixel(at)), 200) << size.width();
  }
}

TEST(WallThumbnailsTest, hasNoTileForUnreadablePictures) {
  const fennick::test::TemporaryFolder disk;
  fennick::test::FaultyFileSystem files;
  fennick::test::FakeDecoder decoder;
  fennick::Thumbnails made(files, disk / "cache", decoder);
  WallThumbnails thumbnails(made);
  const auto tileOf = [&](const std::filesystem::path &file) {
    const auto id = WallThumbnails::idOf(pictureIn(file));
    return thumbnails.tile(id, 100).value();
  };
  EXPECT_TRUE(tileOf(disk / "gone.jpg").isNull());
  EXPECT_TRUE(tileOf(disk.write("damaged thumbnail.jpg")).isNull());
  decoder.setThumbnail(std::unexpected(fennick::PictureError{}));
  EXPECT_TRUE(tileOf(disk.write("damaged picture.jpg")).isNull());
  EXPECT_TRUE(thumbnails.tile("nonsense", 100)->isNull());
  decoder.setThumbnail(decoder.kFault(fennick::PictureFault::busy));
  EXPECT_FALSE(thumbnails.tile(WallThumbnails::idOf(pictureIn(disk.write("later.jpg"))), 100));
}

} // namespace
} // namespace quarrow::test
