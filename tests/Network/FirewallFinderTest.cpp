#include "FennickCore/Network/FirewallFinder.h"

#include "FennickCore/Network/FirewallNftables.h"
#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using Kind = FirewallFinding::Kind;
using Port = FirewallFinding::Port;

constexpr std::string_view kUfwCommand = "sudo ufw allow 8000/tcp";
constexpr std::string_view kInsertion = "sudo nft insert rule {} tcp dport 8000 accept";

class FirewallFinderTest : public ::testing::Test {
protected:
  // Phones come to port 8000 by wlan0.
  FirewallFinding found() const {
    return FirewallFinder({.root = disk.path(), .firewalld = [&](auto, const auto &) { return firewalld; }})
        .find(8000, "wlan0");
  }
  void enableUfw(std::string_view policy, std::string_view rules) {
    disk.write("etc/ufw/ufw.conf", "# Set to yes\nENABLED=yes\nLOGLEVEL=low\n");
    disk.write("etc/default/ufw", fmt::format("IPV6=yes\nDEFAULT_INPUT_POLICY=\"{}\"\n", policy));
    disk.write("etc/ufw/user.rules", rules);
  }
  void enableNftables(std::string_view rules) {
    disk.makeFolder("etc/systemd/system/sysinit.target.wants");
    fs::path link = disk / "etc/systemd/system/sysinit.target.wants/nftables.service";
    fs::remove(link);
    fs::create_symlink("/lib/systemd/system/nftables.service", link);
    disk.write("etc/services", "ssh\t22/tcp # login\nhttp-alt\t8000/tcp\twebcache\nmdns 8000/udp\n");
    disk.write("etc/nftables.conf", rules);
  }

  test::TemporaryFolder disk;
  std::optional<FirewalldAnswers> firewalld;
};

TEST_F(FirewallFinderTest, NothingActiveMeansOpenAndOfSeveralTheForemostIsTold) {
  EXPECT_EQ(found(), (FirewallFinding{.kind = Kind::none, .port = Port::open, .command = ""}));
  disk.write("etc/nftables.conf",
             "table inet filter { chain input { type filter hook input priority 0; policy drop; } }");
  EXPECT_EQ(found().kind, Kind::none); // the service is not enabled
  enableNftables("table ip fw {\nchain in {\ntype filter hook input priority 0; policy drop\n}\n}");
  EXPECT_EQ(found(), (FirewallFinding{Kind::nftables, Port::closed, fmt::format(kInsertion, "ip fw in")}));
  enableUfw("DROP", "");
  EXPECT_EQ(found(), (FirewallFinding{Kind::ufw, Port::closed, std::string(kUfwCommand)}));
  disk.write("etc/ufw/ufw.conf", "ENABLED=no\n");
  EXPECT_EQ(found().kind, Kind::nftables);
  disk.write("etc/ufw/ufw.conf", "ENABLED=no\nenabled='YES' # by hand\n");
  EXPECT_EQ(found().kind, Kind::ufw);
  firewalld = FirewalldAnswers{.zone = "home", .hasPort = true, .target = "default"};
  EXPECT_EQ(found(), (FirewallFinding{Kind::firewalld, Port::open, ""}));
}

TEST_F(FirewallFinderTest, FirewalldLetsInWhatTheZoneListsOrAcceptsAltogether) {
  constexpr std::string_view kCommand =
      "sudo firewall-cmd{} --add-port=8000/tcp --permanent && sudo firewall-cmd --reload";
  const std::tuple<FirewalldAnswers, Port, std::string_view> cases[] = {
      {{"home", false, "default"}, Port::closed, " --zone=home"},
      {{"home", false, "%%REJECT%%"}, Port::closed, " --zone=home"},
      {{"trusted", false, "ACCEPT"}, Port::open, ""},
      {{"trusted", {}, "ACCEPT"}, Port::open, ""},
      {{"home", {}, "default"}, Port::unknown, " --zone=home"},
      {{"home", false, {}}, Port::unknown, " --zone=home"},
      {{}, Port::unknown, ""},
  };
  for (const auto &[answers, port, zone] : cases) {
    firewalld = answers;
    const auto command = port == Port::open ? "" : fmt::format(fmt::runtime(kCommand), zone);
    EXPECT_EQ(found(), (FirewallFinding{Kind::firewalld, port, command})) << answers.zone;
  }
}

TEST_F(FirewallFinderTest, TheFirstRuleOfUfwDecidesAndPartialOnesLeaveDoubt) {
  constexpr std::string_view kAll = "0.0.0.0/0 any 0.0.0.0/0";
  const std::tuple<const char *, std::vector<std::string>, Port> cases[] = {
      {"DROP", {}, Port::closed},
      {"ACCEPT", {}, Port::open},
      {"DROP", {"allow tcp 8000 {} in"}, Port::open},
      {"DROP", {"allow any 22,7990:8010 {}"}, Port::open},
      {"DROP", {"allow_log tcp any {} in_wlan0 comment=70686f6e6573"}, Port::open},
      {"DROP", {"allow tcp 80,8000 {} My%20App - in"}, Port::open},
      {"DROP",
       {"allow udp 8000 {} in", "allow tcp 8001:8010 {} in", "route:allow tcp 8000 {} in"},
       Port::closed},
      {"DROP", {"allow tcp 8000 {} in_eth0", "allow tcp 8000 {} out", "allow tcp"}, Port::closed},
      {"ACCEPT", {"reject tcp 8000 {} in", "allow tcp 8000 {} in"}, Port::closed},
      {"DROP", {"limit tcp 8000 {} in"}, Port::unknown},
      {"DROP", {"allow tcp 8000 0.0.0.0/0 any 192.168.1.0/24 in"}, Port::unknown},
      {"ACCEPT", {"deny any any 0.0.0.0/0 any 10.0.0.9 in"}, Port::unknown},
      {"DROP", {"deny any any 0.0.0.0/0 any 10.0.0.9 in"}, Port::closed},
  };
  for (const auto &[policy, tuples, port] : cases) {
    std::string rules = "*filter\n### RULES ###\n";
    for (const auto &tuple : tuples)
      rules +=
          "\n### tuple ### " + fmt::format(fmt::runtime(tuple), kAll) + "\n-A ufw-user-input -j ACCEPT\n";
    enableUfw(policy, rules);
    EXPECT_EQ(found().port, port) << policy << rules;
  }
}

TEST_F(FirewallFinderTest, RulesOfUfwThatTheUserMayNotReadAreUnknown) {
  enableUfw("DROP", "");
  fs::remove(disk / "etc/ufw/user.rules");
  fs::create_directory(disk / "etc/ufw/user.rules"); // cannot be read as a file, by root neither
  EXPECT_EQ(found(), (FirewallFinding{Kind::ufw, Port::unknown, std::string(kUfwCommand)}));
  disk.write("etc/default/ufw", "DEFAULT_INPUT_POLICY=\"ACCEPT\"\n");
  EXPECT_EQ(found(), (FirewallFinding{Kind::ufw, Port::open, ""}));
}

// Rules of an input chain with policy drop, and what becomes of a phone.
TEST_F(FirewallFinderTest, TheRulesOfAnInputChainAreFollowed) {
  const std::pair<const char *, Port> cases[] = {
      {"tcp dport 8000 accept", Port::open},
      {"tcp dport { 22, 7990-8010 } ct state new counter packets 3 bytes 9 accept comment \"drop\"",
       Port::open},
      {"tcp dport {\n ssh, # login\n http-alt,\n} log prefix \"reject\" level info accept", Port::open},
      {"iifname \"wl*\" accept", Port::open},
      {"iifname != { lo, \"eth0\" } meta l4proto { tcp, udp } th dport 8000 accept", Port::open},
      {"ip protocol tcp \\\n accept", Port::open},
      {"tcp dport 8000 jump phones", Port::open},
      {"jump early; jump phones", Port::open},
      {"tcp dport 22 accept; iif lo accept; udp dport 8000 accept; tcp dport != 8000 accept", Port::closed},
      {"ct state established,related accept\nct state vmap { established : accept, invalid : drop }",
       Port::closed},
      {"icmp type echo-request accept; meta nfproto ipv6 accept; pkttype broadcast accept # accept",
       Port::closed},
      {"reject with icmpx type port-unreachable; tcp dport 8000 accept", Port::closed},
      {"limit rate 9/second reject", Port::closed},
      {"return; accept", Port::closed},
      {"ip saddr 192.168.0.0/16 accept", Port::unknown},
      {"tcp dport $PORTS accept", Port::unknown},
      {"tcp dport @ports accept", Port::unknown},
      {"tcp dport vmap { 8000 : accept, 22 : accept }", Port::unknown},
      {"ip saddr 10.0.0.9 drop; tcp dport 8000 accept", Port::unknown},
      {"ip saddr 10.0.0.0/8 jump phones", Port::unknown},
      {"jump nowhere", Port::unknown},
      {"jump again", Port::unknown},
      {"include \"more.nft\"", Port::unknown},
  };
  for (const auto &[rules, port] : cases) {
    enableNftables(fmt::format("#!/usr/sbin/nft -f\nflush ruleset\ndefine PORTS = {{ 1,\n2 }}\n"
                               "table inet filter {{\n"
                               "  set ports {{ type inet_service; elements = {{ 8000 }} }}\n"
                               "  chain phones {{ tcp dport 8000 accept; }}\n"
                               "  chain early {{ return; drop; }}\n"
                               "  chain again {{ jump again; jump again; }}\n"
                               "  chain input {{\n"
                               "    type filter hook input priority filter; policy drop;\n    {}\n  }}\n}}\n",
                               rules));
    const auto command = port == Port::open ? "" : fmt::format(kInsertion, "inet filter input");
    EXPECT_EQ(found(), (FirewallFinding{Kind::nftables, port, command})) << rules;
  }
}

TEST_F(FirewallFinderTest, EveryInputChainHasToLetPhonesInAndNoOtherCounts) {
  enableNftables("table inet filter { chain input { type filter hook input priority 0; } }");
  EXPECT_EQ(found(), (FirewallFinding{Kind::nftables, Port::open, ""}));
  enableNftables("table inet a { chain forward { type filter hook forward priority 0; policy drop; }\n"
                 "  chain lost { drop; }\n}\n"
                 "table ip6 b { chain input { type filter hook input priority 0; policy drop; } }\n"
                 "table c { chain in { type filter hook input priority 0; drop; } }\n"
                 "table inet d { chain in { type filter hook input priority 0; ip ttl 1 drop; } }\n");
  EXPECT_EQ(found(), (FirewallFinding{Kind::nftables, Port::closed,
                                      fmt::format(kInsertion, "inet d in") + " && " +
                                          fmt::format(kInsertion, "ip c in")}));
  for (const char *rules : {"add rule inet filter input drop\n", "include \"/etc/nftables.d/*.nft\"\n"}) {
    enableNftables(rules); // which chains there are is not known: the usual one is named
    EXPECT_EQ(found(),
              (FirewallFinding{Kind::nftables, Port::unknown, fmt::format(kInsertion, "inet filter input")}));
  }
}

TEST_F(FirewallFinderTest, RulesThatEndAnywhereAreTaken) {
  const std::string rules =
      "define P = { 1 }\ntable inet f {\n chain in {\n type filter hook input priority 0; policy "
      "drop;\n iifname { lo : jump \"x\" } log prefix \"a\" counter packets 1\n ct state "
      "!= { new, established } tcp dport { 1, 2-3 } accept \\\n }\n}\n";
  for (std::size_t length = 0; length <= rules.size(); ++length) {
    const auto judgement = FirewallNftables::judge(rules.substr(0, length), "a 1/tcp", {.port = 8000});
    const bool hasPolicy = length >= rules.find(" drop");
    EXPECT_TRUE(!hasPolicy || judgement.port != Port::open) << length;
  }
}

} // namespace
} // namespace fennick
