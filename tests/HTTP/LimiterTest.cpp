#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/HTTP/SlidingWindowLimiter.h"

#include <gtest/gtest.h>

namespace fennick {
namespace {

constexpr auto at(double seconds) {
  return Uptime(std::chrono::duration_cast<std::chrono::nanoseconds>(Seconds(seconds)));
}

class RateLimiterTest : public ::testing::Test {
protected:
  void failTimes(int count, double seconds) {
    for (int i = 0; i < count; ++i)
      limiter.recordFailure("phone", at(seconds));
  }
  bool isBanned(double seconds) { return limiter.isBanned("phone", at(seconds)); }

  RateLimiter limiter{{.maxFailures = 10, .window = Seconds(60), .banDuration = Seconds(300)}};
};

TEST_F(RateLimiterTest, TheLastFailureOfTheWindowBansForTheWholeBan) {
  failTimes(9, 1000);
  EXPECT_FALSE(isBanned(1000));
  failTimes(1, 1059.999);
  EXPECT_TRUE(isBanned(1059.999));
  EXPECT_TRUE(isBanned(1359.998));
  EXPECT_FALSE(isBanned(1359.999));
  EXPECT_FALSE(limiter.isBanned("another", at(1100)));
}

TEST_F(RateLimiterTest, AFailureAsOldAsTheWindowNoLongerCounts) {
  failTimes(9, 1000);
  failTimes(1, 1060);
  EXPECT_FALSE(isBanned(1060));
  failTimes(8, 1060);
  EXPECT_FALSE(isBanned(1060));
  failTimes(1, 1119.999);
  EXPECT_TRUE(isBanned(1120));
}

TEST_F(RateLimiterTest, AfterABanTheCountBeginsAtZero) {
  failTimes(10, 1000);
  EXPECT_FALSE(isBanned(1300));
  failTimes(9, 1300);
  EXPECT_FALSE(isBanned(1300));
}

TEST_F(RateLimiterTest, AResetLiftsBansAndForgetsFailures) {
  failTimes(10, 1000);
  limiter.reset();
  EXPECT_FALSE(isBanned(1000));
  failTimes(9, 1001);
  limiter.reset();
  failTimes(9, 1002);
  EXPECT_FALSE(isBanned(1002));
}

TEST(SlidingWindowLimiter, SoManyInAnyWindowAndRefusedOnesDoNotCount) {
  SlidingWindowLimiter limiter(3, Seconds(60));
  const auto allowed = [&](double seconds) { return limiter.allow("phone", at(seconds)); };
  EXPECT_TRUE(allowed(1000));
  EXPECT_TRUE(allowed(1030));
  EXPECT_TRUE(allowed(1030));
  for (const double refused : {1030.0, 1045.0, 1059.999})
    EXPECT_FALSE(allowed(refused)) << refused;
  EXPECT_TRUE(limiter.allow("another", at(1059)));
  EXPECT_TRUE(allowed(1060));
  EXPECT_FALSE(allowed(1089.999));
  EXPECT_TRUE(allowed(1090));
  EXPECT_TRUE(allowed(1090));
  EXPECT_FALSE(allowed(1090));
}

} // namespace
} // namespace fennick
