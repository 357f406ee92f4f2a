#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "tests/Imaging/PictureSamples.h"

#include <gmock/gmock.h>

namespace fennick::picture::test {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

ExifBlock parsed(const std::string &block) { return ExifBlock::parse(block).value(); }

TEST(PictureExif, ABlockIsEditedInItsPlaceAndWhatIsRemovedLeavesNoByte) {
  for (const ByteOrder order : {ByteOrder::little, ByteOrder::big}) {
    const std::string tiff = sampleExif({.order = order});
    ExifBlock block = parsed("Exif\0\0"s + tiff);
    EXPECT_EQ(block.orientation(), 6);
    ASSERT_TRUE(block.setOrientation(8));
    EXPECT_EQ(block.orientation(), 8);
    ASSERT_TRUE(block.setOrientation(6));
    EXPECT_EQ(block.tiff(), tiff);

    block.removeGPS();
    EXPECT_TRUE(!block.hasGPS() && block.hasThumbnail());
    EXPECT_THAT(block.tiff(), Not(HasSubstr(kLatitude.substr(0, 8))));
    block.removeThumbnail();
    EXPECT_FALSE(block.hasThumbnail());
    EXPECT_THAT(block.tiff(), Not(HasSubstr("preview")));
    EXPECT_EQ(block.tiff().find(kMakerNote), tiff.find(kMakerNote));
    EXPECT_EQ(block.orientation(), 6);
    EXPECT_TRUE(block.hasExif() && block.hasTIFF());
  }
}

TEST(PictureExif, ABlockWithoutOrientationGrowsAtItsEndAndNothingElseMoves) {
  const std::string tiff = sampleExif({.orientation = std::nullopt});
  ExifBlock block = parsed(tiff);
  EXPECT_EQ(block.orientation(), std::nullopt);
  ASSERT_TRUE(block.setOrientation(3));
  EXPECT_EQ(block.orientation(), 3);
  EXPECT_EQ(block.tiff().substr(8, tiff.size() - 8), tiff.substr(8));
  EXPECT_TRUE(block.hasGPS() && block.hasExif() && block.hasTIFF() && block.hasThumbnail());
  EXPECT_EQ(parsed(ExifBlock::minimal(5)).orientation(), 5);
}

TEST(PictureExif, APreviewOfAWrongLengthTakesNothingElseWithIt) {
  std::string tiff = sampleExif();
  const std::string length = "\x02\x02\x04\0\1\0\0\0"s;
  tiff.replace(tiff.find(length) + length.size(), 4, "\xFF\xFF\xFF\0"s);
  ExifBlock block = parsed(tiff);
  block.removeThumbnail();
  EXPECT_EQ(block.orientation(), 6);
  EXPECT_TRUE(block.hasGPS() && block.hasTIFF());
}

TEST(PictureExif, PlaceNamesInPanasonicsNotesGo) {
  const std::string entry = "\x6D\0\x02\0\x04\0\0\0Kyo\0"s; // a city
  ExifBlock block = parsed(sampleExif({.makerNote = "Panasonic\0\0\0\1\0"s + entry + "\0\0\0\0"s}));
  ASSERT_THAT(block.tiff(), HasSubstr("Kyo"));
  block.removeGPS();
  EXPECT_THAT(block.tiff(), Not(HasSubstr("Kyo")));
  EXPECT_THAT(block.tiff(), HasSubstr("Panasonic"));
}

TEST(PictureExif, ACircleOfDirectoriesAndACutBlockEnd) {
  const std::string whole = sampleExif();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    auto block = ExifBlock::parse(whole.substr(0, length));
    if (!block)
      continue;
    block->removeGPS();
    block->removeThumbnail();
    const bool isSet = block->setOrientation(2);
    EXPECT_TRUE(!isSet || block->orientation() == 2);
  }
  TiffWriter circle(ByteOrder::little);
  const std::size_t at = 8;
  ASSERT_EQ(circle.directory({circle.longValue(0x8769, at)}, at), at);
  ExifBlock block = parsed(circle.finish(at));
  EXPECT_FALSE(block.hasGPS());
  block.removeThumbnail();
  EXPECT_FALSE(block.hasThumbnail());
}

} // namespace
} // namespace fennick::picture::test
