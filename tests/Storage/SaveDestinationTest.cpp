#include "FennickCore/Storage/SaveDestination.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace fennick {
namespace {

// The computer's time zone for the length of a case.
class SaveDestinationTest : public ::testing::Test {
protected:
  void travelTo(const char *zone) { ::setenv("TZ", zone, 1); }
  ~SaveDestinationTest() override {
    if (before_)
      ::setenv("TZ", before_->c_str(), 1);
    else
      ::unsetenv("TZ");
  }

  const SaveDestination daily{.folder = "/photos", .dateSubfolders = true, .naming = {}, .subfolder = {}};

private:
  std::optional<std::string> before_ =
      std::getenv("TZ") != nullptr ? std::optional<std::string>(std::getenv("TZ")) : std::nullopt;
};

constexpr Instant kLastSecondOfApril{std::chrono::seconds(1'714'521'599)}; // 2024-04-30 23:59:59 UTC
constexpr auto kOneSecond = std::chrono::seconds(1);

TEST_F(SaveDestinationTest, TheDayChangesAtLocalMidnightWhereverThePersonIs) {
  struct Place {
    const char *zone;
    const char *before;
    const char *after;
  };
  for (const auto &[zone, before, after] : {Place{"UTC0", "2024-04-30", "2024-05-01"},
                                            Place{"CST-8", "2024-05-01", "2024-05-01"}, // eight hours ahead
                                            Place{"EST5", "2024-04-30", "2024-04-30"}}) {
    travelTo(zone);
    EXPECT_EQ(daily.directory(kLastSecondOfApril), std::filesystem::path("/photos") / before) << zone;
    EXPECT_EQ(daily.directory(kLastSecondOfApril + kOneSecond), std::filesystem::path("/photos") / after)
        << zone;
  }
}

TEST_F(SaveDestinationTest, DatesAreWrittenInFixedDigitsDownToTheSecond) {
  travelTo("UTC0");
  EXPECT_EQ(localSecondText(kLastSecondOfApril + std::chrono::nanoseconds(999'999'999)), "20240430_235959");
  EXPECT_EQ(localSecondText(Instant(std::chrono::nanoseconds(-1))), "19691231_235959");
  EXPECT_EQ(localDayText(Instant{}), "1970-01-01");
}

TEST_F(SaveDestinationTest, NoSessionNameLeadsOutOfTheSaveFolder) {
  SaveDestination destination{
      .folder = "/photos", .dateSubfolders = false, .naming = {}, .subfolder = "trip"};
  EXPECT_EQ(destination.directory(kLastSecondOfApril), "/photos/trip");
  for (const std::string &name :
       {std::string(), std::string("."), std::string(".."), std::string("../trip"), std::string("/etc"),
        std::string("a/b"), std::string("a\0b", 3), std::string(256, 'x')}) {
    destination.subfolder = name;
    EXPECT_EQ(destination.directory(kLastSecondOfApril), "/photos") << name;
  }
}

TEST_F(SaveDestinationTest, TheSessionsFolderLiesInsideTheDays) {
  travelTo("UTC0");
  SaveDestination destination = daily;
  destination.subfolder = "trip";
  EXPECT_EQ(destination.directory(kLastSecondOfApril + kOneSecond), "/photos/2024-05-01/trip");
}

} // namespace
} // namespace fennick
