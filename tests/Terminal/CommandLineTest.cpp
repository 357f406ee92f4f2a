#include "Quarrow/Terminal/CommandLine.h"

#include <gmock/gmock.h>

namespace quarrow {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST(CommandLineTest, ReadsAllOptions) {
  const auto line =
      CommandLine::parse({"--folder", "照片/../party", "--port=9000", "--state-dir", "/state", "--set",
                          "naming=timestamp", "--set=folderLimit=5", "--json", "--no-qr"});
  ASSERT_TRUE(line);
  EXPECT_EQ(line->folder, std::filesystem::current_path() / "party");
  EXPECT_EQ(line->port, 9000);
  EXPECT_EQ(line->stateDirectory, "/state");
  EXPECT_THAT(line->overrides, ElementsAre("naming=timestamp", "folderLimit=5"));
  EXPECT_TRUE(line->json);
  EXPECT_FALSE(line->qr);
}

TEST(CommandLineTest, RejectsInvalidArgumentsWithASentenceThatNamesThem) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
      {{"--bogus"}, "--bogus"},      {{"-x"}, "-x"},
      {{"photos"}, "photos"},        {{"--port", "65536"}, "65536"},
      {{"--port", "-1"}, "-1"},      {{"--port", "80a"}, "80a"},
      {{"--port"}, "--port"},        {{"--folder"}, "--folder"},
      {{"--folder", ""}, "--folder"}};
  for (const auto &[arguments, named] : cases) {
    const auto line = CommandLine::parse(arguments);
    ASSERT_FALSE(line) << named;
    EXPECT_THAT(line.error(), HasSubstr(named));
  }
}

} // namespace
} // namespace quarrow
