#include "FennickCore/HTTP/PrivateAddress.h"

#include <gtest/gtest.h>

namespace fennick {
namespace {

TEST(PrivateAddress, OnlyPrivateAndLocalAddressesAre) {
  for (const auto *address : {"10.0.0.5", "10.255.255.255", "127.0.0.1", "169.254.3.4", "172.16.0.0",
                              "172.31.255.1", "192.168.1.20", "::ffff:192.168.0.2", "::FFFF:10.0.0.1", "::1",
                              "::1%lo", "fe80::1%wlan0", "FE80::1", "febf::1", "fc00::1", "fd12::3"})
    EXPECT_TRUE(isPrivateAddress(address)) << address;
  for (const auto *address : {"8.8.8.8", "9.255.255.255", "11.0.0.0", "128.0.0.1", "169.253.0.1",
                              "172.15.255.255", "172.32.0.1", "192.167.1.1", "192.169.0.1", "0.0.0.0",
                              "::ffff:8.8.8.8", "2001:db8::1", "fec0::1", "ff02::1", "::", "::2"})
    EXPECT_FALSE(isPrivateAddress(address)) << address;
}

TEST(PrivateAddress, TextThatIsNoAddressIsPublic) {
  for (const auto *text : {"", "%", "%10.0.0.1", "10", "10.0.0", "10.0.0.", "10.0.0.256", "10.0.0.1.2",
                           "10..0.1", "10.0.0.1 ", "10.0.0.-1", "a.b.c.d", "localhost", "::ffff:"})
    EXPECT_FALSE(isPrivateAddress(text)) << text;
}

} // namespace
} // namespace fennick
