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

} // namespace
} // namespace quarrow::test
