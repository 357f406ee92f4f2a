#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/ExifDetails.h"
#include "tests/Imaging/PictureSamples.h"

#include <gmock/gmock.h>

namespace fennick::picture::test {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;

ExifBlock parsed(const std::string &block) { return ExifBlock::parse(block).value(); }

TEST(PictureExif, EditsABlockInPlaceAndErasesRemovedData) {
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

TEST(PictureExif, AppendsAMissingOrientation) {
  const std::string tiff = sampleExif({.orientation = std::nullopt});
  ExifBlock block = parsed(tiff);
  EXPECT_EQ(block.orientation(), std::nullopt);
  ASSERT_TRUE(block.setOrientation(3));
  EXPECT_EQ(block.orientation(), 3);
  EXPECT_EQ(block.tiff().substr(8, tiff.size() - 8), tiff.substr(8));
  EXPECT_TRUE(block.hasGPS() && block.hasExif() && block.hasTIFF() && block.hasThumbnail());
  EXPECT_EQ(parsed(ExifBlock::minimal(5)).orientation(), 5);
}

struct Shot {
  std::string make{}, model{}, lens{}, taken{}, offset{};
  std::vector<std::uint32_t> time{}, aperture{}, focal{}; // numerator and denominator
  std::uint16_t iso = 0, film = 0;
};
PictureDetails detailsOf(const Shot &shot, ByteOrder order = ByteOrder::little) {
  TiffWriter tiff(order);
  std::vector<TiffValue> exif;
  const auto text = [](std::uint16_t tag, const std::string &value) {
    return TiffWriter::text(tag, value + "\0"s);
  };
  const auto fraction = [&](std::uint16_t tag, const std::vector<std::uint32_t> &value) {
    if (value.size() == 2)
      exif.push_back({tag, 5, 1, numberText(value[0], 4, order) + numberText(value[1], 4, order)});
  };
  fraction(0x829A, shot.time);
  fraction(0x829D, shot.aperture);
  exif.push_back(tiff.shortValue(0x8827, shot.iso));
  exif.push_back(text(0x9003, shot.taken));
  exif.push_back(text(0x9011, shot.offset));
  fraction(0x920A, shot.focal);
  exif.push_back(tiff.shortValue(0xA405, shot.film));
  exif.push_back(text(0xA434, shot.lens));
  const auto below = tiff.directory(exif);
  const auto first =
      tiff.directory({text(0x010F, shot.make), text(0x0110, shot.model), tiff.longValue(0x8769, below)});
  return exifDetails(tiff.finish(first));
}

TEST(PictureExif, ReadsDetailsInBothByteOrders) {
  const Shot phone{.make = "Apple",
                   .model = "iPhone 15 Pro",
                   .lens = "back camera 6.765mm f/1.78",
                   .taken = "2024:05:01 10:00:00",
                   .offset = "+08:00",
                   .time = {1, 125},
                   .aperture = {178, 100},
                   .focal = {6765, 1000},
                   .iso = 100,
                   .film = 24};
  for (const ByteOrder order : {ByteOrder::little, ByteOrder::big})
    EXPECT_EQ(detailsOf(phone, order), (PictureDetails{.camera = "Apple iPhone 15 Pro",
                                                       .lens = "back camera 6.765mm f/1.78",
                                                       .taken = "2024-05-01 10:00:00",
                                                       .offset = "+08:00",
                                                       .exposure = "1/125 s · f/1.8 · ISO 100 · 24 mm"}));
  EXPECT_EQ(detailsOf({.make = "NIKON CORPORATION", .model = "NIKON D750"}).camera, "NIKON D750");
  EXPECT_EQ(detailsOf({.make = "Scanner"}).camera, "Scanner");
  EXPECT_EQ(detailsOf({.time = {5, 2}, .aperture = {8, 1}, .focal = {50, 1}}).exposure,
            "2.5 s · f/8 · 50 mm");
  EXPECT_EQ(exifDetails(sampleExif()).taken, "2024-05-01 10:00:00");
}

TEST(PictureExif, CleansOrSkipsHostileDetails) {
  const auto details = detailsOf({.make = "Evil\x1B[2J\n",
                                  .model = "\xFF" + std::string(4000, 'x'),
                                  .taken = "2024:05:01T10:00:00",
                                  .offset = "+8:000",
                                  .time = {0xFFFFFFFF, 1},
                                  .aperture = {1, 0},
                                  .focal = {0, 1}});
  EXPECT_THAT(details.camera, testing::StartsWith("Evil [2J \uFFFDxxx"));
  EXPECT_EQ(details.camera.size(), kMostDetailText);
  EXPECT_EQ(details.taken + details.offset + details.exposure, "");
  EXPECT_EQ(detailsOf({.taken = "0000:00:00 00:00:00"}).taken, "");
  EXPECT_EQ(exifDetails("no structure at all"), PictureDetails());
}

TEST(PictureExif, RemovesPlaceNamesFromPanasonicsNotes) {
  const std::string entry = "\x6D\0\x02\0\x04\0\0\0Kyo\0"s; // a city
  ExifBlock block = parsed(sampleExif({.makerNote = "Panasonic\0\0\0\1\0"s + entry + "\0\0\0\0"s}));
  ASSERT_THAT(block.tiff(), HasSubstr("Kyo"));
  block.removeGPS();
  EXPECT_THAT(block.tiff(), Not(HasSubstr("Kyo")));
  EXPECT_THAT(block.tiff(), HasSubstr("Panasonic"));
}

TEST(PictureExif, HandlesCyclesAndTruncatedBlocks) {
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
