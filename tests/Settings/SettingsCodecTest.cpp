#include "FennickCore/Settings/SettingsCodec.h"

#include "tests/Settings/FullSettings.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

std::string problemOf(std::string_view json) {
  const auto settings = decodeAppSettings(json);
  return settings ? "decoded" : settings.error().description();
}

TEST(SettingsCodecTest, WritesTheFieldsInOrder) {
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

TEST(SettingsCodecTest, ReadsBackWhatItWrites) {
  for (const AppSettings &settings : {AppSettings{}, test::fullSettings()})
    EXPECT_EQ(decodeAppSettings(encode(settings).value()), settings);
}

TEST(SettingsCodecTest, UsesInitialValuesForMissingAndNullFields) {
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

TEST(SettingsCodecTest, RejectsAWrongTypeAndNamesTheField) {
  const std::pair<const char *, const char *> cases[] = {
      {R"({"preferredPort":9000,"maxUploadBytes":"big"})",
       "maxUploadBytes: must be a whole number, found string"},
      {R"({"imaging":{"format":"JPEG"}})", R"(imaging.format: must be "keep", "jpeg", "heic" or "png")"},
      {R"({"workflow":{"playSound":1}})", "workflow.playSound: must be true or false, found number"},
      {R"({"workflow":[]})", "workflow: must be an object, found array"},
      {R"({"saveFolderBookmark":"L3Ry!"})", "saveFolderBookmark: must be base64 with padding"},
      {R"({"naming":{"timestamp":null}})", "naming.timestamp: must be an object, found null"},
      {R"({"naming":{}})", "naming: Invalid number of keys found, expected one."},
      {R"({"naming":{"timestamp":{},"prefixSequence":{}}})",
       "naming: Invalid number of keys found, expected one."},
      {R"({"naming":{"other":{}}})", "naming: Invalid number of keys found, expected one."},
      {R"({"preferredPort":65535})", "decoded"},
      {R"({"preferredPort":65536})", "preferredPort: must be from 0 to 65535, found 65536"},
      {R"({"preferredPort":-1})", "preferredPort: must be from 0 to 65535, found -1"},
      {R"({"folderLimit":9223372036854775807})", "decoded"}};
  for (const auto &[json, problem] : cases)
    EXPECT_EQ(problemOf(json), problem) << json;
  for (const char *number : {"9223372036854775808", "18446744073709551616", "8000.0", "1e3"})
    EXPECT_NE(problemOf(fmt::format(R"({{"folderLimit":{}}})", number)), "decoded") << number;
}

TEST(SettingsCodecTest, RejectsHostileText) {
  for (const char *text :
       {"", "[]", "null", "{", "{}x", "\xFF", "{\"naming\":\"\xC3\"}", "\"settings\"", "1e999"})
    EXPECT_NE(problemOf(text), "decoded") << text;
  constexpr std::size_t kDepth = 200'000;
  EXPECT_NE(problemOf(std::string(kDepth, '[')), "decoded");
  EXPECT_EQ(problemOf("{\"x\":" + std::string(kDepth, '[') + std::string(kDepth, ']') + "}"), "decoded");
  EXPECT_EQ(problemOf(std::string(kLargestSettings + 1, ' ')), "settings exceed 1048576 bytes");
}

} // namespace
} // namespace fennick
