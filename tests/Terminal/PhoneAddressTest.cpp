#include "Quarrow/App/PhoneAddress.h"

#include <gtest/gtest.h>

#include <vector>

namespace quarrow {
namespace {

using fennick::LANAddress;

TEST(PhoneAddressTest, ThePreferredInterfaceIsUsedWhileItIsUp) {
  const std::vector<LANAddress> addresses{{"wlan0", "192.168.1.20", LANAddress::Kind::wifi},
                                          {"eth0", "10.0.0.5", LANAddress::Kind::wired},
                                          {"eth0", "10.0.0.6", LANAddress::Kind::wired}};
  EXPECT_EQ(preferredAddress(addresses, std::nullopt)->address, "192.168.1.20");
  EXPECT_EQ(preferredAddress(addresses, "eth0")->address, "10.0.0.5");
  EXPECT_EQ(preferredAddress(addresses, "eth7")->address, "192.168.1.20");
  EXPECT_FALSE(preferredAddress({}, "eth0"));
}

TEST(PhoneAddressTest, URLsNeedAnAddressAndAPort) {
  const LANAddress address{"wlan0", "192.168.1.20", LANAddress::Kind::wifi};
  EXPECT_FALSE(baseURL(std::nullopt, 8000));
  EXPECT_FALSE(baseURL(address, std::nullopt));
  const auto base = baseURL(address, 8001);
  ASSERT_TRUE(base);
  EXPECT_EQ(phoneURL(*base, "aB3dE5gH7j"), "http://192.168.1.20:8001/?k=aB3dE5gH7j");
  EXPECT_EQ(shortcutUploadURL(*base, "aB3dE5gH7j"), "http://192.168.1.20:8001/upload?k=aB3dE5gH7j");
}

} // namespace
} // namespace quarrow
