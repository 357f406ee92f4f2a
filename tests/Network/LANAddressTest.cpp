#include "FennickCore/Network/LANAddressResolver.h"
#include "FennickCore/Network/NetworkPath.h"

#include <gmock/gmock.h>

namespace fennick {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> ranked(const std::vector<InterfaceAddress> &interfaces,
                                const std::vector<std::string> &order = {}) {
  std::vector<std::string> addresses;
  for (const LANAddress &entry : LANAddressResolver::rank(interfaces, order, {}))
    addresses.push_back(entry.address);
  return addresses;
}

TEST(LANAddressResolverTest, LeavesOutUnreachableAddresses) {
  std::vector<InterfaceAddress> interfaces;
  for (const char *name : {"utun3", "awdl0", "llw0", "gif0", "stf0", "lo", "lo0", "anpi1", "ap1", "ipsec0",
                           "pdp_ip0", "vmenet0", "vnic0"})
    interfaces.push_back({name, "192.168.1.2"});
  for (const char *address : {"127.0.0.1", "0.0.0.0", "198.18.0.1", "198.19.255.1", "10.0.0", "10.0.0.1.2",
                              "x", "", "fe80::1", "198.20.0.1", "10.0.0.1", "10.0.0.1"})
    interfaces.push_back({"eth0", address});
  EXPECT_THAT(ranked(interfaces), ElementsAre("198.20.0.1", "10.0.0.1"));
}

TEST(LANAddressResolverTest, OrdersByPreferenceThenNameThenLinkLocal) {
  const std::vector<InterfaceAddress> interfaces{{"eth0", "169.254.1.1"},   {"enp3s0", "10.0.0.4"},
                                                 {"docker0", "172.17.0.1"}, {"wlan0", "10.0.0.3"},
                                                 {"eth0", "10.0.0.2"},      {"br0", "10.0.0.1"}};
  EXPECT_THAT(ranked(interfaces, {"eth0", "wlan0"}),
              ElementsAre("10.0.0.2", "10.0.0.3", "10.0.0.1", "172.17.0.1", "10.0.0.4", "169.254.1.1"));
}

TEST(LANAddressResolverTest, TakesKindsFromThePathThenFromTheName) {
  const std::vector<InterfaceAddress> interfaces{{"bridge0", "10.0.0.2"}, {"bridge100", "10.0.0.3"}};
  EXPECT_THAT(LANAddressResolver::rank(interfaces, {}, {{"bridge0", LANAddress::Kind::wired}}),
              ElementsAre(LANAddress{"bridge0", "10.0.0.2", LANAddress::Kind::wired},
                          LANAddress{"bridge100", "10.0.0.3", LANAddress::Kind::hotspot}));
}

constexpr int kEthernet = 1;
constexpr int kNoLinkLayer = 65534; // ARPHRD_NONE: TUN, WireGuard

// Pieces of which the computers in these cases consist.
InterfaceFacts card(std::string name, std::string type = "") {
  return {.name = std::move(name), .linkType = kEthernet, .deviceType = std::move(type), .hasDevice = true};
}
InterfaceFacts made(std::string name, std::string type = "", std::vector<std::string> of = {}) {
  InterfaceFacts facts{.name = std::move(name), .linkType = kEthernet, .deviceType = type};
  facts.isBridge = type == "bridge";
  facts.isBond = type == "bond";
  facts.lower = std::move(of);
  return facts;
}
InterfaceFacts tunnel(std::string name, int linkType) {
  return {.name = std::move(name), .linkType = linkType, .isTunnel = true};
}
InterfaceFacts routed(InterfaceFacts facts, std::uint32_t metric) {
  facts.defaultRouteMetric = metric;
  return facts;
}

TEST(NetworkPathTest, OrdersReachableInterfacesByRoute) {
  constexpr auto kWired = InterfaceType::wiredEthernet;
  constexpr auto kOther = InterfaceType::other;
  InterfaceFacts wifi = card("wlp2s0", "wlan");
  wifi.isWireless = true;
  const InterfaceFacts wireGuard{.name = "wg0", .linkType = kNoLinkLayer, .deviceType = "wireguard"};
  const InterfaceFacts serial{.name = "ppp0", .linkType = 512};
  const std::tuple<std::string, std::vector<InterfaceFacts>, std::vector<PathInterface>> computers[] = {
      {"the smallest metric first",
       {card("enp1s0"), routed(wifi, 600), routed(card("enp3s0"), 100)},
       {{"enp3s0", kWired}, {"wlp2s0", InterfaceType::wifi}, {"enp1s0", kWired}}},
      {"programs, virtual machines and modems never",
       {routed(tunnel("tun0", kNoLinkLayer), 0), routed(tunnel("tap0", kEthernet), 0), routed(wireGuard, 0),
        made("docker0", "bridge", {"veth12ab"}), made("virbr0", "bridge", {"vnet0"}), made("veth12ab"),
        tunnel("vnet0", kEthernet), made("br-0123456789ab", "bridge"), made("dummy0"),
        routed(card("wwan0", "wwan"), 50), routed(serial, 10), routed(card("eth0"), 600)},
       {{"eth0", kWired}}},
      {"a bridge with the default route is wired",
       {card("eno1"), made("veth1"), routed(made("br0", "bridge", {"bond0", "veth1"}), 0),
        made("bond0", "bond", {"eno1"}), made("bond0.7", "vlan", {"bond0"})},
       {{"br0", kWired}, {"eno1", kWired}, {"bond0", kOther}, {"bond0.7", kOther}}},
      {"virtual Ethernet of whatever name never before hardware, whatever its route",
       {routed(made("corp0"), 0), routed(made("br-0123456789ab", "bridge", {"eth1"}), 1),
        routed(made("docker0", "bridge", {"veth1"}), 2), routed(made("wg0"), 3), made("acme0"), card("eth1"),
        wifi, made("br-lan", "bridge", {"eth1"})},
       {{"eth1", kWired},
        {"wlp2s0", InterfaceType::wifi},
        {"br-lan", kOther},
        {"corp0", kOther},
        {"acme0", kOther}}},
      {"inside a container", {made("docker0", "bridge"), routed(made("eth0"), 0)}, {{"eth0", kOther}}},
      {"made of one another", {made("br0", "bridge", {"br1"}), made("br1", "bridge", {"br0", "gone"})}, {}},
  };
  for (const auto &[what, facts, path] : computers)
    EXPECT_EQ(networkPath(facts).interfaces, path) << what;
}

TEST(DefaultRoutesTest, OrdersUsableDefaultRoutesByMetric) {
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
