#include "tests/SettingsForm/FormFixture.h"

namespace quarrow::test {
namespace {

using fennick::ImagingOptions;
using fennick::OutputFormat;
using ::testing::HasSubstr;
using ::testing::Not;

std::string utf8(const QString &text) { return text.toStdString(); }

TEST_F(FormTest, LeavesThePresetWhenAFieldChanges) {
  EXPECT_EQ(imaging.preset(), "asIs");
  imaging.setKeepOriginal(true); // independent of the preset
  for (const auto &each : ImagingForm::presets()) {
    const QString value = each.toMap().value("value").toString();
    imaging.setPreset(value);
    EXPECT_EQ(imaging.preset(), value);
    EXPECT_TRUE(settings().imaging.keepOriginal);
  }
  imaging.setPreset("share");
  EXPECT_EQ(
      settings().imaging,
      (ImagingOptions{
          .maxPixels = 2048, .format = OutputFormat::jpeg, .stripLocation = true, .keepOriginal = true}));
  imaging.setQuality(50);
  EXPECT_EQ(imaging.preset(), "own");
  imaging.setPreset("own");
  EXPECT_EQ(settings().imaging.maxPixels, 2048);
}

TEST_F(FormTest, ReportsAFormatThatCannotBeWritten) {
  decoder.encodesHEIC = false;
  imaging.setFormat("heic");
  EXPECT_THAT(utf8(imaging.formatMeaning()), Not(HasSubstr("写不了")));
  form.setWatched(true);
  runUntil([&] { return imaging.formatMeaning().contains("会存成 JPEG"); });
  imaging.setFormat("keep");
  EXPECT_THAT(utf8(imaging.formatMeaning()), HasSubstr("写不了 HEIC"));
}

TEST_F(FormTest, UsesATypicalPhotoAsExampleWithoutPhotos) {
  EXPECT_EQ(utf8(imaging.exampleBefore()), "4032 × 3024，3.1 MB");
  EXPECT_EQ(utf8(imaging.exampleAfter()), "原样保存");
  imaging.setPreset("share");
  EXPECT_EQ(utf8(imaging.pixelsMeaning()), "一张 12 MP 的照片会缩到 2048 × 1536");
  EXPECT_EQ(utf8(imaging.exampleAfter()), "2048 × 1536，约 880 KB");
  EXPECT_EQ(utf8(imaging.exampleRemark()), "JPEG，不带位置");
}

TEST_F(FormTest, EncodesTheLatestPhotoAndUsesTheLatestAnswer) {
  decoder.setFacts(fennick::PictureFacts{
      .type = fennick::PictureType::jpeg, .width = 4000, .height = 2000, .orientation = 6});
  decoder.setRendering(fennick::Rendering{.bytes = std::string(5000, 'x'), .longEdge = 1000});
  receive("a.jpg");
  imaging.setLimitsPixels(true);
  imaging.setMaxPixels(1000);
  decoder.hold();
  form.setWatched(true);
  EXPECT_TRUE(imaging.exampleBusy());
  decoder.awaitHeld(1);
  imaging.setStripLocation(true); // requests again before the first answer
  decoder.release();
  runUntil([&] { return !imaging.exampleBusy(); });
  EXPECT_TRUE(decoder.request().stripLocation);
  EXPECT_EQ(utf8(imaging.exampleTitle()), "以最近收到的 a.jpg 为例");
  EXPECT_EQ(utf8(imaging.exampleBefore()), "2000 × 4000，24 字节"); // upright
  EXPECT_EQ(utf8(imaging.exampleAfter()), "500 × 1000，5 KB");

  decoder.setFacts(fennick::test::FakeDecoder::kFault(fennick::PictureFault::undecodable));
  imaging.setStripLocation(false);
  runUntil([&] { return !imaging.exampleBusy(); });
  EXPECT_THAT(utf8(imaging.exampleTitle()), HasSubstr("12 MP"));
}

TEST(PhotoExampleTest, EstimatesWithinTheLimitOrReportsFailure) {
  for (const std::int64_t limit : {2'000'000, 500'000, 50'000}) {
    for (const auto format : {OutputFormat::jpeg, OutputFormat::heic}) {
      const auto example = PhotoExample::ofTypicalPhoto({.maxBytes = limit, .format = format}, true);
      ASSERT_TRUE(example.after);
      EXPECT_LE(example.after->bytes, limit);
      EXPECT_TRUE(example.fits);
    }
  }
  EXPECT_FALSE(PhotoExample::ofTypicalPhoto({.maxBytes = 100}, true).fits);
  const auto small = PhotoExample::ofTypicalPhoto({.maxPixels = 1024, .quality = 0.5}, true);
  const auto large = PhotoExample::ofTypicalPhoto({.maxPixels = 1024, .quality = 0.9}, true);
  EXPECT_LT(small.after->bytes, large.after->bytes);
}

} // namespace
} // namespace quarrow::test
