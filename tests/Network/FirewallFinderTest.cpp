#include "FennickCore/Network/FirewallFinder.h"

#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace fennick {
namespace {

namespace fs = std::filesystem;
using Kind = FirewallFinding::Kind;
using Port = FirewallFinding::Port;

class FirewallFinderTest : public ::testing::Test {
protected:
  FirewallFinding found() const {
    return FirewallFinder({.root = disk.path(), .firewalld = [&](auto, const auto &) { return firewalld; }})
        .find(8000, "wlan0");
  }
  void enableUfw(std::string_view policy) {
    disk.write("etc/ufw/ufw.conf", "# Set to yes\nENABLED=yes\nLOGLEVEL=low\n");
    disk.write("etc/default/ufw", fmt::format("IPV6=yes\nDEFAULT_INPUT_POLICY=\"{}\"\n", policy));
  }

  test::TemporaryFolder disk;
  std::optional<FirewalldAnswers> firewalld;
};

TEST_F(FirewallFinderTest, ReportsFirewalldBeforeUfwAndOpenWithoutEither) {
  const FirewallFinding none{.kind = Kind::none, .port = Port::open, .command = ""};
  EXPECT_EQ(found(), none);
  enableUfw("DROP");
  EXPECT_EQ(found().kind, Kind::ufw);
  disk.write("etc/ufw/ufw.conf", "ENABLED=no\n");
  EXPECT_EQ(found(), none);
  disk.write("etc/ufw/ufw.conf", "ENABLED=no\nenabled='YES' # by hand\n");
  EXPECT_EQ(found().kind, Kind::ufw);
  firewalld = FirewalldAnswers{.zone = "home", .hasPort = true, .target = "default"};
  EXPECT_EQ(found(), (FirewallFinding{Kind::firewalld, Port::open, ""}));
}

TEST_F(FirewallFinderTest, FirewalldIsOpenIfTheZoneListsThePortOrAcceptsEverything) {
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

TEST_F(FirewallFinderTest, UfwIsOpenOnlyIfItsPolicyAcceptsAndUnknownOtherwise) {
  const FirewallFinding unknown{Kind::ufw, Port::unknown, "sudo ufw allow 8000/tcp"};
  enableUfw("DROP");
  EXPECT_EQ(found(), unknown);
  enableUfw("ACCEPT");
  EXPECT_EQ(found(), (FirewallFinding{Kind::ufw, Port::open, ""}));
  fs::remove(disk / "etc/default/ufw");
  EXPECT_EQ(found(), unknown);
}

} // namespace
} // namespace fennick
