#include "FennickCore/Network/NetworkPath.h"

#include <gmock/gmock.h>

namespace fennick {
namespace {

using ::testing::ElementsAre;
using Type = InterfaceType;

constexpr int kEthernet = 1;
constexpr int kNoLinkLayer = 65534; // ARPHRD_NONE: TUN, WireGuard

// The computers of these cases are put together from these pieces.
InterfaceFacts virtualEthernet(std::string name) { return {.name = std::move(name), .linkType = kEthernet}; }
InterfaceFacts card(std::string name) {
  InterfaceFacts facts = virtualEthernet(std::move(name));
  facts.hasDevice = true;
  return facts;
}
InterfaceFacts wifi(std::string name) {
  InterfaceFacts facts = card(std::move(name));
  facts.isWireless = true;
  facts.deviceType = "wlan";
  return facts;
}
InterfaceFacts bridge(std::string name, std::vector<std::string> ports) {
  InterfaceFacts facts = virtualEthernet(std::move(name));
  facts.isBridge = true;
  facts.deviceType = "bridge";
  facts.lower = std::move(ports);
  return facts;
}
InterfaceFacts bond(std::string name, std::vector<std::string> members) {
  InterfaceFacts facts = virtualEthernet(std::move(name));
  facts.isBond = true;
  facts.lower = std::move(members);
  return facts;
}
InterfaceFacts vlan(std::string name, std::string parent) {
  InterfaceFacts facts = virtualEthernet(std::move(name));
  facts.deviceType = "vlan";
  facts.lower = {std::move(parent)};
  return facts;
}
InterfaceFacts tunnel(std::string name, int linkType) {
  InterfaceFacts facts{.name = std::move(name), .linkType = linkType};
  facts.isTunnel = true;
  return facts;
}
InterfaceFacts routed(InterfaceFacts facts, std::uint32_t metric) {
  facts.defaultRouteMetric = metric;
  return facts;
}

std::vector<PathInterface> pathOf(const std::vector<InterfaceFacts> &facts) {
  return networkPath(facts).interfaces;
}

TEST(NetworkPathTest, TheDefaultRouteWithTheSmallestMetricComesFirst) {
  EXPECT_THAT(pathOf({card("enp1s0"), routed(wifi("wlp2s0"), 600), routed(card("enp3s0"), 100)}),
              ElementsAre(PathInterface{"enp3s0", Type::wiredEthernet}, PathInterface{"wlp2s0", Type::wifi},
                          PathInterface{"enp1s0", Type::wiredEthernet}));
}

TEST(NetworkPathTest, ATunnelIsPassedOverThoughItCarriesTheDefaultRoute) {
  InterfaceFacts wireGuard{.name = "wg0", .linkType = kNoLinkLayer};
  wireGuard.deviceType = "wireguard";
  EXPECT_THAT(pathOf({routed(tunnel("tun0", kNoLinkLayer), 0), routed(tunnel("tap0", kEthernet), 0),
                      routed(wireGuard, 0), routed(wifi("wlan0"), 600)}),
              ElementsAre(PathInterface{"wlan0", Type::wifi}));
}

TEST(NetworkPathTest, ContainersAndVirtualMachinesAreLeftOut) {
  EXPECT_THAT(pathOf({bridge("docker0", {"veth12ab"}), bridge("virbr0", {"vnet0"}),
                      virtualEthernet("veth12ab"), tunnel("vnet0", kEthernet), bridge("br-0123456789ab", {}),
                      virtualEthernet("dummy0"), routed(card("eth0"), 0)}),
              ElementsAre(PathInterface{"eth0", Type::wiredEthernet}));
}

TEST(NetworkPathTest, ABridgeOrBondThatCarriesTheDefaultRouteIsWired) {
  EXPECT_THAT(pathOf({card("eno1"), virtualEthernet("veth1"), routed(bridge("br0", {"bond0", "veth1"}), 0),
                      bond("bond0", {"eno1"}), vlan("bond0.7", "bond0")}),
              ElementsAre(PathInterface{"br0", Type::wiredEthernet},
                          PathInterface{"eno1", Type::wiredEthernet}, PathInterface{"bond0", Type::other},
                          PathInterface{"bond0.7", Type::other}));
}

TEST(NetworkPathTest, MobileBroadbandIsLeftOut) {
  InterfaceFacts modem = routed(card("wwan0"), 50);
  modem.deviceType = "wwan";
  InterfaceFacts serial{.name = "ppp0", .linkType = 512};
  EXPECT_THAT(pathOf({modem, routed(serial, 10)}), ElementsAre());
}

TEST(NetworkPathTest, InsideAContainerTheOneCableIsTheWayOut) {
  EXPECT_THAT(pathOf({routed(virtualEthernet("eth0"), 0)}), ElementsAre(PathInterface{"eth0", Type::other}));
}

TEST(NetworkPathTest, InterfacesMadeOfOneAnotherEndTheSearch) {
  EXPECT_THAT(pathOf({bridge("br0", {"br1"}), bridge("br1", {"br0", "gone"})}), ElementsAre());
}

TEST(DefaultRoutesTest, OnlyUsableDefaultRoutesCountTheSmallestMetricFirst) {
  EXPECT_THAT(
      defaultRoutes("Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT \n"
                    "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0      \n"
                    "eth0\t00000000\t0101A8C0\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
                    "eth0\t0001A8C0\t00000000\t0001\t0\t0\t0\t00FFFFFF\t0\t0\t0\n"
                    "tun0\t00000000\t00000000\t0001\t0\t0\t0\t00000080\t0\t0\t0\n" // 0.0.0.0/1
                    "*\t00000000\t00000000\t0200\t0\t0\t1\t00000000\t0\t0\t0\n"    // unreachable
                    "eth1\t00000000\t0101A8C0\t0002\t0\t0\t1\t00000000\t0\t0\t0\n" // not up
                    "\nbroken\t00000000\n"
                    "eth2\t00000000\t0101A8C0\t0003\t0\t0\t-1\t00000000\t0\t0\t0\n"),
      ElementsAre(DefaultRoute{"eth0", 100}, DefaultRoute{"wlan0", 600}));
}

} // namespace
} // namespace fennick
