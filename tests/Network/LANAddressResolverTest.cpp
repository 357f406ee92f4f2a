#include "FennickCore/Network/LANAddressResolver.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <unordered_set>

namespace fennick {
namespace {

using Kind = LANAddress::Kind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

std::vector<LANAddress> rank(const std::vector<InterfaceAddress> &interfaces,
                             const std::vector<std::string> &order = {},
                             const std::map<std::string, Kind> &kinds = {}) {
  return LANAddressResolver::rank(interfaces, order, kinds);
}

std::vector<std::string> addressesOf(const std::vector<LANAddress> &ranked) {
  std::vector<std::string> addresses;
  for (const LANAddress &entry : ranked)
    addresses.push_back(entry.address);
  return addresses;
}

TEST(LANAddressResolverTest, InterfacesThatNoPhoneIsOnNeverAppear) {
  std::vector<InterfaceAddress> interfaces;
  for (const char *name : {"utun3", "awdl0", "llw0", "gif0", "stf0", "lo", "lo0", "anpi1", "ap1", "ipsec0",
                           "pdp_ip0", "vmenet0", "vnic0"})
    interfaces.push_back({name, "192.168.1.2"});
  EXPECT_THAT(rank(interfaces), IsEmpty());
}

TEST(LANAddressResolverTest, AddressesThatAreNeverReachableAreDropped) {
  std::vector<InterfaceAddress> interfaces;
  for (const char *address : {"127.0.0.1", "0.0.0.0", "198.18.0.1", "198.19.255.1", "10.0.0", "10.0.0.1.2",
                              "x", "", "fe80::1", "198.20.0.1", "10.0.0.1"})
    interfaces.push_back({"eth0", address});
  EXPECT_THAT(addressesOf(rank(interfaces)), ElementsAre("198.20.0.1", "10.0.0.1"));
}

TEST(LANAddressResolverTest, ThePreferredOrderComesFirstThenNamesThenLinkLocal) {
  const auto ranked = rank({{"eth0", "169.254.1.1"},
                            {"enp3s0", "10.0.0.4"},
                            {"docker0", "172.17.0.1"},
                            {"wlan0", "10.0.0.3"},
                            {"eth0", "10.0.0.2"},
                            {"br0", "10.0.0.1"}},
                           {"eth0", "wlan0"});
  EXPECT_THAT(addressesOf(ranked),
              ElementsAre("10.0.0.2", "10.0.0.3", "10.0.0.1", "172.17.0.1", "10.0.0.4", "169.254.1.1"));
  EXPECT_THAT(addressesOf(rank({{"eth0", "169.254.7.7"}})), ElementsAre("169.254.7.7"));
}

TEST(LANAddressResolverTest, KindsComeFromThePathThenFromTheName) {
  EXPECT_THAT(
      rank({{"bridge100", "10.0.0.1"}, {"en5", "10.0.0.2"}, {"en0", "10.0.0.3"}, {"bridge0", "10.0.0.4"}}, {},
           {{"en0", Kind::wifi}, {"bridge0", Kind::wired}}),
      UnorderedElementsAre(
          LANAddress{"bridge100", "10.0.0.1", Kind::hotspot}, LANAddress{"en5", "10.0.0.2", Kind::other},
          LANAddress{"en0", "10.0.0.3", Kind::wifi}, LANAddress{"bridge0", "10.0.0.4", Kind::wired}));
}

TEST(LANAddressResolverTest, OneInterfaceMayHaveSeveralAddressesButNoneTwice) {
  const auto ranked =
      rank({{"eth0", "10.0.0.1"}, {"eth0", "10.0.0.2"}, {"eth0", "10.0.0.1"}, {"eth1", "0.0.0.2"}});
  EXPECT_THAT(addressesOf(ranked), UnorderedElementsAre("10.0.0.1", "10.0.0.2"));
  EXPECT_EQ(std::unordered_set<LANAddress>(ranked.begin(), ranked.end()).size(), 2U);
}

// Whatever computer runs this, the loopback interface is up and has an address that must not be offered.
TEST(LANAddressResolverTest, TheSystemsOwnListPassesThroughTheSameRules) {
  const auto system = LANAddressResolver::systemIPv4Interfaces();
  EXPECT_THAT(system, ::testing::Contains(InterfaceAddress{"lo", "127.0.0.1"}));
  for (const LANAddress &entry : LANAddressResolver::snapshot()) {
    EXPECT_THAT(system, ::testing::Contains(InterfaceAddress{entry.interface, entry.address}));
    EXPECT_FALSE(entry.address.starts_with("127."));
  }
}

} // namespace
} // namespace fennick
