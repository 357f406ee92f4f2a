#include "FennickCore/Platform/Preferences.h"

#include "FennickCore/Platform/Log.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::HasSubstr;
using ::testing::SizeIs;

class FilePreferencesTest : public ::testing::Test {
protected:
  FilePreferencesTest() {
    logTo([this](std::string_view line) { lines.emplace_back(line); });
  }
  ~FilePreferencesTest() override { logTo({}); }

  [[nodiscard]] FilePreferences reopened() const { return FilePreferences(file); }

  test::TemporaryFolder folder;
  const fs::path file = folder / "tevrin/preferences.json";
  std::vector<std::string> lines;
};

TEST_F(FilePreferencesTest, ValuesSurviveARestartAndAreTheUsersAlone) {
  {
    FilePreferences preferences(file);
    ASSERT_TRUE(preferences.setText("名", "值\n\"1\""));
    ASSERT_TRUE(preferences.setFlag("on", true));
  }
  const auto preferences = reopened();
  EXPECT_EQ(preferences.text("名"), "值\n\"1\"");
  EXPECT_TRUE(preferences.flag("on"));
  EXPECT_EQ(preferences.text("on"), std::nullopt);
  EXPECT_FALSE(preferences.flag("名"));
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
  EXPECT_THAT(folder.names("tevrin"), ElementsAre("preferences.json"));
}

TEST_F(FilePreferencesTest, KeysOfOtherVersionsAreKept) {
  folder.write("tevrin/preferences.json", R"({"later": {"a": [1, null]}, "text": "old"})");
  ASSERT_TRUE(reopened().setText("text", "new"));
  EXPECT_THAT(folder.read("tevrin/preferences.json"), HasSubstr("\"later\""));
  EXPECT_EQ(reopened().text("text"), "new");
}

TEST_F(FilePreferencesTest, ADamagedFileIsKeptAsideBeforeTheFirstWrite) {
  for (const std::string_view damaged : {"{\"text\": \"cut sho", "[1, 2]", "", "\xFF\xFE"}) {
    folder.write("tevrin/preferences.json", damaged);
    auto preferences = reopened();
    EXPECT_EQ(preferences.text("text"), std::nullopt);
    EXPECT_EQ(folder.read("tevrin/preferences.json"), damaged); // reading changes nothing
    ASSERT_TRUE(preferences.setText("text", "1"));
    ASSERT_TRUE(preferences.setText("text", "2"));
    EXPECT_EQ(folder.read("tevrin/preferences.json.damaged"), damaged);
    EXPECT_EQ(reopened().text("text"), "2");
  }
}

TEST_F(FilePreferencesTest, ALinkIsFollowedAndStays) {
  const auto elsewhere = folder.write("elsewhere.json", R"({"other": "mine"})");
  fs::create_directory(folder / "tevrin");
  fs::create_symlink(elsewhere, file);
  ASSERT_TRUE(reopened().setText("text", "new"));
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_THAT(folder.read("elsewhere.json"), AllOf(HasSubstr("mine"), HasSubstr("new")));
}

TEST_F(FilePreferencesTest, WhatCannotBeReadIsKeptAsideAsWell) {
  folder.write("tevrin/preferences.json/inside");
  ASSERT_TRUE(reopened().setText("text", "new"));
  EXPECT_THAT(folder.names("tevrin/preferences.json.damaged"), ElementsAre("inside"));
}

TEST_F(FilePreferencesTest, AValueThatCannotBeStoredHoldsForTheRestOfTheRun) {
  folder.write("tevrin", "a file where the folder should be");
  auto preferences = reopened();
  EXPECT_FALSE(preferences.setText("text", "new"));
  EXPECT_FALSE(preferences.setFlag("on", true));
  EXPECT_EQ(preferences.text("text"), "new");
  EXPECT_TRUE(preferences.flag("on"));
  EXPECT_EQ(folder.read("tevrin"), "a file where the folder should be");
  EXPECT_THAT(lines, AllOf(SizeIs(Ge(2U)), Each(HasSubstr("preferences")))); // failures are told
}

} // namespace
} // namespace fennick
