#include "FennickCore/Settings/SettingsOverride.h"

#include "FennickCore/Settings/SettingsCodec.h"
#include "tests/Settings/FullSettings.h"
#include "tests/Support/Words.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace fennick {
namespace {

using nlohmann::ordered_json;
using ::testing::HasSubstr;

// The stored record's leaves by dotted key.
ordered_json leavesOf(const AppSettings &settings) {
  ordered_json leaves = ordered_json::object();
  const ordered_json flat = ordered_json::parse(encode(settings).value()).flatten();
  for (const auto &[pointer, value] : flat.items()) {
    std::string key = pointer.substr(1);
    std::ranges::replace(key, '/', '.');
    leaves[key] = value;
  }
  return leaves;
}

std::string refusal(std::string_view keyValue, AppSettings settings = {}) {
  const AppSettings before = settings;
  const auto done = applyOverride(settings, keyValue);
  if (done)
    return "accepted";
  EXPECT_EQ(settings, before) << keyValue;
  return done.error();
}

AppSettings with(std::initializer_list<std::string_view> overrides, AppSettings settings = {}) {
  for (const std::string_view keyValue : overrides) {
    const auto done = applyOverride(settings, keyValue);
    EXPECT_TRUE(done) << keyValue << ": " << (done ? "" : done.error());
  }
  return settings;
}

TEST(SettingsOverrideTest, SetsEveryField) {
  const ordered_json wanted = leavesOf(test::fullSettings());
  const ordered_json initial = leavesOf({});
  AppSettings settings;
  for (const auto &[key, value] : wanted.items()) {
    EXPECT_NE(value, initial.value(key, ordered_json())) << key << " is not exercised";
    const auto done = applyOverride(settings, key + "=" + value.dump());
    EXPECT_TRUE(done) << done.error();
  }
  EXPECT_EQ(settings, test::fullSettings());
}

TEST(SettingsOverrideTest, AcceptsTextWithoutQuotes) {
  const AppSettings settings = with({"preferredInterface=eth0", "sessionSubfolder=2024", "galleryFolder=a=b",
                                     "workflow.openWithAppName=true", "imaging.format=heic",
                                     "naming.prefixSequence.prefix=null", "saveFolderBookmark=L3Nydi8x"});
  EXPECT_EQ(settings.preferredInterface, "eth0");
  EXPECT_EQ(settings.sessionSubfolder, "2024");
  EXPECT_EQ(settings.galleryFolder, "a=b");
  EXPECT_EQ(settings.workflow.openWithAppName, "true");
  EXPECT_EQ(settings.imaging.format, OutputFormat::heic);
  EXPECT_EQ(std::get<PrefixSequenceNaming>(settings.naming).prefix, "null");
  EXPECT_EQ(settings.saveFolderBookmark, test::bookmarkOf("/srv/1"));
}

TEST(SettingsOverrideTest, ClearsOnlyOptionalFieldsWithNull) {
  EXPECT_EQ(with({"hotKeyPreset=null", "folderLimit=null"}, test::fullSettings()).folderLimit, std::nullopt);
  for (const char *key : {"preferredPort", "galleryEnabled", "imaging", "imaging.quality", "naming"})
    EXPECT_NE(refusal(fmt::format("{}=null", key)), "accepted") << key;
}

TEST(SettingsOverrideTest, SetsTheNamingByNameFieldOrStoredForm) {
  const PrefixSequenceNaming fourDigits{.digits = 4};
  EXPECT_EQ(with({"naming=prefixSequence"}).naming, NamingPolicy(PrefixSequenceNaming{}));
  EXPECT_EQ(with({"naming.prefixSequence.digits=4"}).naming, NamingPolicy(fourDigits));
  EXPECT_EQ(with({"naming.prefixSequence.digits=4", "naming=prefixSequence"}).naming,
            NamingPolicy(fourDigits));
  EXPECT_EQ(with({R"(naming={"prefixSequence":{"digits":4}})"}).naming, NamingPolicy(fourDigits));
  EXPECT_EQ(with({R"(naming.prefixSequence={"digits":4})"}).naming, NamingPolicy(fourDigits));
  EXPECT_EQ(with({"naming=timestamp"}, test::fullSettings()).naming, NamingPolicy(TimestampNaming{}));
  EXPECT_NE(refusal("naming=random"), "accepted");
  EXPECT_THAT(refusal(R"(naming={"prefixSequence":{"digits":10}})"),
              HasSubstr("naming.prefixSequence.digits"));
}

TEST(SettingsOverrideTest, RejectsHarmfulValues) {
  const std::string tooLong = "naming.prefixSequence.prefix=" + std::string(200, 'x');
  auto cases = test::words("maxUploadBytes=0 folderLimit=-1 imaging.maxPixels=0 imaging.quality=1.01 "
                           "imaging.qualityFloor=-0.1 naming.prefixSequence.prefix=a/b "
                           "naming.prefixSequence.prefix=.hidden naming.prefixSequence.separator=/ "
                           "naming.prefixSequence.digits=0 naming.prefixSequence.start=-1 "
                           "sessionSubfolder= sessionSubfolder=a/b sessionSubfolder=.. "
                           "sessionSubfolder=originals sessionSubfolder=export galleryFolder=../x "
                           "galleryFolder=/etc saveFolderBookmark=/srv preferredPort=65536 "
                           "preferredPort=8000.0 galleryEnabled=yes imaging.format=gif");
  for (const auto &more :
       {tooLong, std::string("naming.prefixSequence.prefix=a\nb"), std::string(R"(galleryFolder="a\u0000")"),
        std::string(R"(imaging={"maxPixels":0})"), std::string(R"(workflow={"notify":1})")})
    cases.push_back(more);
  for (const auto &keyValue : cases)
    EXPECT_THAT(refusal(keyValue), HasSubstr(" / ")) << keyValue;
}

TEST(SettingsOverrideTest, NamesKeyValueAndAllowedRangeInErrors) {
  EXPECT_EQ(refusal("folderLimit=-1"),
            "folderLimit 不能设为“-1”，应为不小于 0 的整数，或 null / "
            "folderLimit cannot be \"-1\": it takes a whole number from 0, or null");
  EXPECT_THAT(refusal(R"(imaging={"quality":"high"})"), HasSubstr("imaging.quality"));
  EXPECT_THAT(refusal(R"(naming={"timestamp":1})"), HasSubstr("JSON"));
  const std::string unprintable = refusal("folderLimit=\x1b[2J" + std::string(5000, 'x'));
  EXPECT_EQ(unprintable.find('\x1b'), std::string::npos);
  EXPECT_LT(unprintable.size(), 400U);
}

TEST(SettingsOverrideTest, RejectsUnknownKeys) {
  for (const char *keyValue :
       {"=", "port=1", "imaging.=1", "imaging.maxPixels.x=1", ".imaging=1", "folderLimitX=1",
        "naming.timestamp.x=1", "naming.prefixSequenceX=1", "PreferredPort=1"})
    EXPECT_THAT(refusal(keyValue), HasSubstr("There is no setting")) << keyValue;
  EXPECT_THAT(refusal("folderLimit"), HasSubstr("KEY=VALUE"));
  EXPECT_THAT(refusal("preferredInterface=\xFF"), HasSubstr("UTF-8"));
}

} // namespace
} // namespace fennick
