#include "FennickCore/Platform/Files/Preferences.h"

#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <functional>
#include <thread>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class FilePreferencesTest : public ::testing::Test {
protected:
  [[nodiscard]] FilePreferences reopened() const { return FilePreferences(file); }

  test::TemporaryFolder folder;
  const fs::path file = folder / "tevrin/preferences.json";
};

TEST_F(FilePreferencesTest, KeepsValuesAndUnknownKeysThroughALink) {
  fs::create_directory(folder / "tevrin");
  fs::create_symlink(folder.write("elsewhere.json", R"({"later": {"a": [1, null]}, "on": 1})"), file);
  ASSERT_TRUE(reopened().setText("名", "值\n\"1\""));
  folder.write("elsewhere.json.0A1B2C3D-4E5F-4071-8293-A4B5C6D7E8F9.tmp", "cut sho");
  folder.write("elsewhere.json.tmp");
  ASSERT_TRUE(reopened().setFlag("on", true));
  EXPECT_THAT(folder.names(), ElementsAre("elsewhere.json", "elsewhere.json.tmp", "tevrin"));
  EXPECT_EQ(reopened().text("名"), "值\n\"1\"");
  EXPECT_TRUE(reopened().flag("on"));
  EXPECT_EQ(reopened().text("on"), std::nullopt);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_THAT(folder.read("elsewhere.json"), HasSubstr("\"later\""));
}

TEST_F(FilePreferencesTest, LosesNothingWhenProgramsWriteAtTheSameTime) {
  constexpr int kKeys = 20;
  auto one = reopened();
  auto other = reopened();
  const auto writeKeys = [](FilePreferences &preferences, const std::string &prefix) {
    for (int i = 0; i < kKeys; ++i)
      EXPECT_TRUE(preferences.setFlag(prefix + std::to_string(i), true));
  };
  {
    const std::jthread first(writeKeys, std::ref(one), "a");
    const std::jthread second(writeKeys, std::ref(other), "b");
  }
  ASSERT_TRUE(one.setText("text", "1"));
  ASSERT_TRUE(other.setText("text", "3"));
  ASSERT_TRUE(one.setFlag("seen", true));
  const auto next = reopened();
  for (const FilePreferences *preferences : {&std::as_const(one), &next}) {
    EXPECT_EQ(preferences->text("text"), "3");
    EXPECT_TRUE(preferences->flag("seen"));
    for (int i = 0; i < kKeys; ++i)
      EXPECT_TRUE(preferences->flag(fmt::format("a{}", i)) && preferences->flag(fmt::format("b{}", i))) << i;
  }
}

TEST_F(FilePreferencesTest, KeepsADamagedFileBeforeTheFirstWrite) {
  std::string kept = "tevrin/preferences.json.damaged";
  int number = 1;
  for (const std::string_view damaged : {"{\"text\": \"cut sho", "[1, 2]", "", "\xFF\xFE"}) {
    folder.write("tevrin/preferences.json", damaged);
    auto preferences = reopened();
    EXPECT_EQ(preferences.text("text"), std::nullopt);
    EXPECT_EQ(folder.read("tevrin/preferences.json"), damaged); // reading changes nothing
    ASSERT_TRUE(preferences.setText("text", "1"));
    ASSERT_TRUE(preferences.setText("text", "2"));
    EXPECT_EQ(folder.read(kept), damaged);
    EXPECT_EQ(reopened().text("text"), "2");
    kept = "tevrin/preferences.json.damaged-" + std::to_string(++number);
  }
}

TEST_F(FilePreferencesTest, KeepsUnusableContentThatAppearsWhileInUse) {
  auto preferences = reopened();
  ASSERT_TRUE(preferences.setText("text", "1"));
  const std::function<void()> intruders[] = {
      [&] { folder.write("tevrin/preferences.json/file", "theirs"); }, // a folder
      [&] { folder.write("tevrin/preferences.json", "cut sho"); },
      [&] { ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0); },
      [&] { fs::create_symlink(file, file); },
      [] {}, // nothing is there any more
  };
  for (const auto &intrude : intruders) {
    fs::remove(file);
    intrude();
    ASSERT_TRUE(preferences.setFlag("on", true));
    EXPECT_TRUE(reopened().flag("on"));
    EXPECT_EQ(reopened().text("text"), "1");
  }
  EXPECT_EQ(folder.read("tevrin/preferences.json.damaged/file"), "theirs");
  EXPECT_EQ(folder.read("tevrin/preferences.json.damaged-2"), "cut sho");
  EXPECT_TRUE(fs::is_symlink(folder / "tevrin/preferences.json.damaged-4"));
}

TEST_F(FilePreferencesTest, StoresAFailedValueTogetherWithTheNext) {
  folder.write("tevrin", "a file where the folder should be");
  auto preferences = reopened();
  EXPECT_FALSE(preferences.setText("text", "new"));
  EXPECT_EQ(preferences.text("text"), "new");
  EXPECT_EQ(folder.read("tevrin"), "a file where the folder should be");

  fs::remove(folder / "tevrin");
  folder.write("tevrin/preferences.json", R"({"text": "old", "other": "kept"})");
  ASSERT_TRUE(preferences.setFlag("on", true));
  EXPECT_EQ(reopened().text("text"), "new");
  EXPECT_EQ(reopened().text("other"), "kept");
}

} // namespace
} // namespace fennick
