#include "FennickCore/HTTP/PrivateAddress.h"
#include "FennickCore/HTTP/RateLimiter.h"
#include "FennickCore/HTTP/SlidingWindowLimiter.h"
#include "tests/Support/Words.h"

#include <gtest/gtest.h>

namespace fennick {
namespace {

TEST(PrivateAddress, AcceptsOnlyPrivateAndLocalAddresses) {
  for (const auto *address : {"10.0.0.5", "10.255.255.255", "127.0.0.1", "169.254.3.4", "172.16.0.0",
                              "172.31.255.1", "192.168.1.20", "::ffff:192.168.0.2", "::FFFF:10.0.0.1", "::1",
                              "::1%lo", "fe80::1%wlan0", "FE80::1", "febf::1", "fc00::1", "fd12::3"})
    EXPECT_TRUE(isPrivateAddress(address)) << address;
  for (const std::string &address :
       test::words("8.8.8.8 9.255.255.255 11.0.0.0 128.0.0.1 169.253.0.1 172.15.255.255 172.32.0.1 "
                   "192.167.1.1 192.169.0.1 0.0.0.0 ::ffff:8.8.8.8 2001:db8::1 fec0::1 ff02::1 :: ::2 "
                   "%10.0.0.1 10 10.0.0. 10.0.0.256 10.0.0.1.2 localhost"))
    EXPECT_FALSE(isPrivateAddress(address)) << address;
  EXPECT_FALSE(isPrivateAddress("") || isPrivateAddress("10.0.0.1 "));
}

constexpr auto at(double seconds) {
  return Uptime(std::chrono::duration_cast<std::chrono::nanoseconds>(Seconds(seconds)));
}

TEST(RateLimiter, BansAfterTooManyFailuresInTheWindow) {
  RateLimiter limiter({.maxFailures = 10, .window = Seconds(60), .banDuration = Seconds(300)});
  const auto isBannedAfter = [&](int failures, double seconds) {
    for (int i = 0; i < failures; ++i)
      limiter.recordFailure("phone", at(seconds));
    return limiter.isBanned("phone", at(seconds));
  };
  EXPECT_FALSE(isBannedAfter(9, 1000));
  EXPECT_FALSE(isBannedAfter(1, 1060)); // a failure as old as the window no longer counts
  EXPECT_FALSE(isBannedAfter(8, 1060));
  EXPECT_TRUE(isBannedAfter(1, 1119.999));
  EXPECT_FALSE(limiter.isBanned("another", at(1120)));
  EXPECT_TRUE(isBannedAfter(0, 1419.998));
  EXPECT_FALSE(isBannedAfter(9, 1419.999)); // the count begins at zero
  EXPECT_TRUE(isBannedAfter(1, 1420));
  limiter.reset();
  EXPECT_FALSE(isBannedAfter(9, 1421));
}

} // namespace
} // namespace fennick
