#include "FennickCore/Settings/SettingsCodec.h"

#include "tests/Settings/FullSettings.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>

namespace fennick {
namespace {

std::string problemOf(std::string_view json) {
  const auto settings = decodeAppSettings(json);
  return settings ? "decoded" : settings.error().description();
}

TEST(SettingsCodecTest, TheStoredFormHasTheFieldsInOrder) {
  EXPECT_EQ(
      encode(test::fullSettings()),
      R"({"preferredPort":9000,"saveFolderBookmark":"L3Nydi/nhafniYc=","dateSubfolders":true,)"
      R"("naming":{"prefixSequence":{"prefix":"展会","separator":"-","digits":4,"start":100}},)"
      R"("maxUploadBytes":5000000000,"preferredInterface":"wlan0",)"
      R"("imaging":{"maxPixels":2048,"maxBytes":1500000,"format":"jpeg","quality":0.7,"qualityFloor":0.25,)"
      R"("stripLocation":true,"stripAllMetadata":true,"keepOriginal":true},)"
      R"("workflow":{"copyToClipboard":true,)"
      R"("openWithAppBookmark":"L3Vzci9zaGFyZS9hcHBsaWNhdGlvbnMvdmlld2VyLmRlc2t0b3A=",)"
      R"("openWithAppName":"查看器","playSound":true,"notify":true},"hotKeyPreset":2,)"
      R"("sessionSubfolder":"婚礼","galleryEnabled":true,"galleryFolder":"精选/第一天","folderLimit":500,)"
      R"("autoPrune":false})");
}

TEST(SettingsCodecTest, AbsentFieldsAreLeftOut) {
  EXPECT_EQ(
      encode(AppSettings{}),
      R"({"preferredPort":8000,"dateSubfolders":false,"naming":{"timestamp":{}},"maxUploadBytes":314572800,)"
      R"("imaging":{"format":"keep","quality":0.85,"qualityFloor":0.5,"stripLocation":false,)"
      R"("stripAllMetadata":false,"keepOriginal":false},)"
      R"("workflow":{"copyToClipboard":false,"playSound":false,"notify":false},)"
      R"("galleryEnabled":false,"autoPrune":true})");
}

TEST(SettingsCodecTest, WhatWasStoredIsReadBackEqual) {
  for (const AppSettings &settings : {AppSettings{}, test::fullSettings()})
    EXPECT_EQ(decodeAppSettings(encode(settings).value()), settings);
}

TEST(SettingsCodecTest, MissingNullAndUnknownFieldsLeaveTheInitialValues) {
  AppSettings port9000;
  port9000.preferredPort = 9000;
  AppSettings sequence;
  sequence.naming = PrefixSequenceNaming{.prefix = "A"};
  const std::pair<std::string_view, AppSettings> cases[] = {
      {"{}", {}},
      {R"({"preferredPort":9000})", port9000},
      {R"({"preferredPort":9000,"autoPrune":null,"naming":null,"imaging":null,"workflow":{"notify":null}})",
       port9000},
      {R"({"preferredPort":9000,"future":{"deep":[1]},"imaging":{"maxPixels":null,"future":1}})", port9000},
      {R"({"naming":{"prefixSequence":{"prefix":"A"},"future":1}})", sequence},
  };
  for (const auto &[json, expected] : cases)
    EXPECT_EQ(decodeAppSettings(json), expected) << json;
}

TEST(SettingsCodecTest, AWrongTypeAnywhereFailsTheRecordAndNamesTheField) {
  EXPECT_EQ(problemOf(R"({"preferredPort":9000,"maxUploadBytes":"big"})"),
            "maxUploadBytes: must be a whole number, found string");
  EXPECT_EQ(problemOf(R"({"imaging":{"maxPixels":true}})"),
            "imaging.maxPixels: must be a whole number, found boolean");
  EXPECT_EQ(problemOf(R"({"imaging":{"format":"JPEG"}})"),
            R"(imaging.format: must be "keep", "jpeg", "heic" or "png")");
  EXPECT_EQ(problemOf(R"({"workflow":{"playSound":1}})"),
            "workflow.playSound: must be true or false, found number");
  EXPECT_EQ(problemOf(R"({"workflow":[]})"), "workflow: must be an object, found array");
  EXPECT_EQ(problemOf(R"({"saveFolderBookmark":"L3Ry!"})"),
            "saveFolderBookmark: must be base64 with padding");
  EXPECT_EQ(problemOf(R"({"naming":{"prefixSequence":{"digits":"3"}}})"),
            "naming.prefixSequence.digits: must be a whole number, found string");
  EXPECT_EQ(problemOf(R"({"naming":{"timestamp":null}})"), "naming.timestamp: must be an object, found null");
  for (const char *naming : {"{}", R"({"timestamp":{},"prefixSequence":{}})", R"({"other":{}})"})
    EXPECT_EQ(problemOf(fmt::format(R"({{"naming":{}}})", naming)),
              "naming: Invalid number of keys found, expected one.");
}

TEST(SettingsCodecTest, WholeNumbersFitTheirFieldAndHaveNoFraction) {
  EXPECT_EQ(problemOf(R"({"preferredPort":65535})"), "decoded");
  EXPECT_EQ(problemOf(R"({"preferredPort":65536})"), "preferredPort: must be from 0 to 65535, found 65536");
  EXPECT_EQ(problemOf(R"({"preferredPort":-1})"), "preferredPort: must be from 0 to 65535, found -1");
  EXPECT_EQ(problemOf(R"({"folderLimit":9223372036854775807})"), "decoded");
  for (const char *number : {"9223372036854775808", "18446744073709551616", "8000.0", "1e3"})
    EXPECT_NE(problemOf(fmt::format(R"({{"folderLimit":{}}})", number)), "decoded") << number;
  EXPECT_EQ(decodeAppSettings(R"({"imaging":{"quality":1}})")->imaging.quality, 1.0);
}

TEST(SettingsCodecTest, HostileTextIsAnOrdinaryError) {
  for (const char *text :
       {"", "[]", "null", "{", "{}x", "\xFF", "{\"naming\":\"\xC3\"}", "\"settings\"", "1e999"})
    EXPECT_NE(problemOf(text), "decoded") << text;
  constexpr std::size_t kDepth = 200'000;
  EXPECT_NE(problemOf(std::string(kDepth, '[')), "decoded");
  EXPECT_EQ(problemOf("{\"x\":" + std::string(kDepth, '[') + std::string(kDepth, ']') + "}"), "decoded");
  EXPECT_EQ(problemOf(std::string(kLargestSettings + 1, ' ')), "settings exceed 1048576 bytes");
}

TEST(SettingsCodecTest, AManyKeyedObjectIsReadInTimeProportionalToItsSize) {
  std::string json = "{";
  for (int i = 0; json.size() < kLargestSettings - 32; ++i)
    json += fmt::format("\"{}\":0,", i);
  EXPECT_EQ(problemOf(json + "\"z\":0}"), "decoded");
}

TEST(SettingsCodecTest, WhatJSONCannotHoldIsNotEncoded) {
  AppSettings settings;
  settings.preferredInterface = "\xFF";
  EXPECT_FALSE(encode(settings));
  settings = {};
  settings.imaging.quality = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(encode(settings));
}

} // namespace
} // namespace fennick
