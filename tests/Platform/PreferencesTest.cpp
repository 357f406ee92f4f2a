#include "FennickCore/Platform/Preferences.h"

#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class FilePreferencesTest : public ::testing::Test {
protected:
  [[nodiscard]] FilePreferences reopened() const { return FilePreferences(file); }

  test::TemporaryFolder folder;
  const fs::path file = folder / "tevrin/preferences.json";
};

TEST_F(FilePreferencesTest, ValuesSurviveARestartBesideThoseOfOtherVersionsBehindALink) {
  fs::create_directory(folder / "tevrin");
  fs::create_symlink(folder.write("elsewhere.json", R"({"later": {"a": [1, null]}, "on": 1})"), file);
  ASSERT_TRUE(reopened().setText("名", "值\n\"1\""));
  ASSERT_TRUE(reopened().setFlag("on", true));
  EXPECT_EQ(reopened().text("名"), "值\n\"1\"");
  EXPECT_TRUE(reopened().flag("on"));
  EXPECT_EQ(reopened().text("on"), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_THAT(folder.read("elsewhere.json"), HasSubstr("\"later\""));
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

TEST_F(FilePreferencesTest, AValueThatCannotBeStoredHoldsForTheRestOfTheRun) {
  folder.write("tevrin", "a file where the folder should be");
  auto preferences = reopened();
  EXPECT_FALSE(preferences.setText("text", "new"));
  EXPECT_EQ(preferences.text("text"), "new");
  EXPECT_EQ(folder.read("tevrin"), "a file where the folder should be");
}

} // namespace
} // namespace fennick
