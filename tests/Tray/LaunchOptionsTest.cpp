#include "Quarrow/Desktop/LaunchOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quarrow {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(LaunchOptionsTest, ReadsOptionsAndNamesUnknownOnes) {
  const auto asked =
      LaunchOptions::parse({"--show-panel", "--state-dir", "here", "--show-settings", "--login-item"});
  ASSERT_TRUE(asked);
  EXPECT_THAT(asked->windows, ElementsAre("--show-panel", "--show-settings"));
  EXPECT_EQ(asked->stateDirectory, std::filesystem::current_path() / "here");
  EXPECT_TRUE(asked->loginItem);
  EXPECT_FALSE(asked->selfTest);
  EXPECT_EQ(LaunchOptions::parse({"--state-dir=/a b"})->stateDirectory, "/a b");

  for (const auto &wrong : {std::vector<std::string>{"--nonsense"}, {"photo.jpg"}, {"--show-panels"}})
    EXPECT_THAT(LaunchOptions::parse(wrong).error(), HasSubstr(wrong.back()));
  for (const auto &incomplete : {std::vector<std::string>{"--state-dir"}, {"--state-dir="}})
    EXPECT_THAT(LaunchOptions::parse(incomplete).error(), HasSubstr("--state-dir"));
}

TEST(LaunchOptionsTest, HandsOverTheArgumentsOfASecondLaunch) {
  const HandOver asked{.windows = {"--show-panel"}, .loginItem = true, .activationToken = "token 1=2"};
  const auto received = HandOver::parse(asked.arguments());
  EXPECT_EQ(received.windows, asked.windows);
  EXPECT_TRUE(received.loginItem);
  EXPECT_EQ(received.activationToken, asked.activationToken);
  EXPECT_THAT(HandOver{}.arguments(), IsEmpty());
  EXPECT_THAT(HandOver::parse({"--self-test", "/etc/passwd"}).windows, IsEmpty());
}

} // namespace
} // namespace quarrow
