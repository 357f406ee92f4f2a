#include "FennickCore/Network/LocalNetworkProbe.h"
#include "FennickCore/Network/NetworkWatcher.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Network/RouteMonitor.h"
#include "tests/Support/ManualQueue.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <map>
#include <semaphore>
#include <stdexcept>
#include <string>
#include <vector>

// Real interfaces in a network namespace that the script in-namespace makes.
namespace fennick {
namespace {

namespace fs = std::filesystem;
using Addresses = std::vector<std::string>; // "wlan0 192.168.7.20 wifi"
using Woken = RouteMonitor::Woken;

const fs::path kInterfaces = "/sys/class/net";

struct Answer {
  bool succeeded = false;
  std::string text;
};

// Runs each line as arguments of "ip", in one batch.
Answer ask(const std::string &lines) {
  const std::string command = "ip -batch - 2>&1 <<'END'\n" + lines + "\nEND\n";
  FILE *output = ::popen(command.c_str(), "re");
  Answer answer;
  std::array<char, 4096> piece{};
  while (std::fgets(piece.data(), piece.size(), output) != nullptr)
    answer.text += piece.data();
  answer.succeeded = ::pclose(output) == 0;
  return answer;
}

std::string ip(const std::string &lines) {
  const Answer answer = ask(lines);
  if (!answer.succeeded)
    throw std::runtime_error("ip: " + lines + "\n" + answer.text); // fails the case
  return answer.text;
}

void awaitRunning(const std::string &name) {
  RouteMonitor monitor;
  while (ip("link show dev " + name).find("NO-CARRIER") != std::string::npos)
    ASSERT_EQ(monitor.awaitChanges(), Woken::changes);
}

// Opens a tunnel that exists as long as the descriptor, which is closed if the system refuses.
FileDescriptor openTunnel(const std::string &name, int kind) {
  FileDescriptor tunnel(::open("/dev/net/tun", O_RDWR | O_CLOEXEC));
  ifreq request{};
  name.copy(request.ifr_name, IFNAMSIZ - 1);
  request.ifr_flags = static_cast<short>(kind | IFF_NO_PI);
  if (::ioctl(tunnel.get(), TUNSETIFF, &request) != 0)
    tunnel.reset();
  return tunnel;
}

// Reports when a file is read.
class ReadNotice {
public:
  explicit ReadNotice(const fs::path &file) {
    EXPECT_GE(::inotify_add_watch(inotify_.get(), file.c_str(), IN_CLOSE_NOWRITE), 0);
  }
  void await() {
    inotify_event event{};
    EXPECT_EQ(::read(inotify_.get(), &event, sizeof event), static_cast<ssize_t>(sizeof event));
  }

private:
  FileDescriptor inotify_{::inotify_init1(IN_CLOEXEC)};
};

// The main thread's queue; reports when something was posted.
class Main final : public MainQueue {
public:
  void post(std::function<void()> task) override {
    queue_.post(std::move(task));
    posted_.release();
  }
  void postAfter(Seconds delay, std::function<void()> task) override {
    queue_.postAfter(delay, std::move(task));
  }
  // A test whose condition never holds is ended by its time limit.
  void awaitPost() { posted_.acquire(); }
  void run() { queue_.run(); }

private:
  test::ManualQueue queue_;
  std::counting_semaphore<> posted_{0};
};

class InterfacesTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_NE(std::getenv("TEVRIN_OWN_NETWORK"), nullptr) << "to be run by tests/Network/in-namespace";
  }
  void TearDown() override {
    watcher.stop();
    main.run();
    EXPECT_TRUE(reports.empty()) << reports.size() << " reports too many";
    for (const std::string &name : made) {
      ask("link del " + name); // in case the test has not done so
      fs::remove_all(kInterfaces / name);
    }
  }

  // Virtual cables whose other end is "far-NAME", with the description of the required hardware. The "x" of a
  // description only creates its folder.
  void wifiCard(const std::string &name) {
    describe(name, {{"type", "1\n"}, {"uevent", "DEVTYPE=wlan\n"}, {"device/x", ""}, {"wireless/x", ""}});
    cable(name);
  }
  void wiredCard(const std::string &name) {
    describe(name, {{"type", "1\n"}, {"uevent", ""}, {"device/x", ""}});
    cable(name);
  }
  void cable(const std::string &name) {
    const std::string far = "far-" + name;
    ip("link add " + name + " type veth peer name " + far + "\nlink set " + far + " up");
    bringUp(name);
  }
  void bringUp(const std::string &name) {
    ip("link set " + name + " up");
    made.push_back(name);
    awaitRunning(name);
  }
  void tunnel(const std::string &name, int kind) {
    if (FileDescriptor opened = openTunnel(name, kind); opened.isOpen()) {
      describe(name);
      tunnels.push_back(std::move(opened));
      return bringUp(name);
    }
    describe(name, {{"type", kind == IFF_TUN ? "65534\n" : "1\n"}, {"uevent", ""}, {"tun_flags", "0x1\n"}});
    cable(name);
  }
  void describe(const std::string &name, const std::map<std::string, std::string> &files) {
    for (const auto &[file, content] : files) {
      fs::create_directories((kInterfaces / name / file).parent_path());
      std::ofstream(kInterfaces / name / file) << content;
    }
  }
  // Prints the kernel's description.
  void describe(const std::string &name) {
    fs::create_directory_symlink("../../devices/virtual/net/" + name, kInterfaces / name);
  }

  // Expects the next report to be this one.
  void expectReport(const Addresses &addresses) {
    main.awaitPost();
    main.run();
    ASSERT_FALSE(reports.empty());
    EXPECT_EQ(reports.front(), addresses);
    reports.pop_front();
  }

  std::vector<std::string> made;
  std::vector<FileDescriptor> tunnels;
  std::deque<Addresses> reports;
  Main main;
  NetworkWatcher watcher{main, [this](const std::vector<LANAddress> &addresses) {
                           Addresses &report = reports.emplace_back();
                           for (const auto &[interface, address, kind] : addresses)
                             report.push_back(fmt::format("{} {} {}", interface, address, rawValue(kind)));
                         }};

  const std::string wifi = "wlan0 192.168.7.20 wifi";
  const std::string wired = "enp1s0 192.168.8.21 wired";
  const std::string joinWifi = "addr add 192.168.7.20/24 dev wlan0\n"
                               "route add default via 192.168.7.1 dev wlan0 metric 600";
  const std::string joinWired = "addr add 192.168.8.21/24 dev enp1s0\n"
                                "route add default via 192.168.8.1 dev enp1s0 metric 100";
};

TEST_F(InterfacesTest, ReportsEachNetworkChangeOnce) {
  wifiCard("wlan0");
  wiredCard("enp1s0");
  watcher.start();
  expectReport({});
  ip(joinWifi);
  expectReport({wifi});
  ip(joinWired);
  expectReport({wired, wifi});
  ip("link set wlan0 down");
  expectReport({wired});
  ip("link set wlan0 up");
  expectReport({wired, wifi});
  ip("link set far-enp1s0 down"); // simulates a pulled cable
  expectReport({wifi});
}

TEST_F(InterfacesTest, IgnoresAnAddressThatIsGoneForAMoment) {
  wifiCard("wlan0");
  ip(joinWifi);
  watcher.start();
  expectReport({wifi});
  ReadNotice look(kInterfaces / "wlan0/type");
  ip("addr del 192.168.7.20/24 dev wlan0\n" + joinWifi);
  look.await();
  ip("addr add 10.9.9.9/8 dev wlan0 label wlan0:1");
  expectReport({wifi, "wlan0 10.9.9.9 wifi"});
  ip("addr flush dev wlan0");
  expectReport({});
}

TEST_F(InterfacesTest, RanksWifiBeforeAVPNWithTheDefaultRoute) {
  wifiCard("wlan0");
  ip(joinWifi);
  watcher.start();
  expectReport({wifi});
  if (ask("link add nordlynx type wireguard").succeeded) {
    describe("nordlynx");
    bringUp("nordlynx");
  } else { // a kernel without that kind
    tunnel("nordlynx", IFF_TUN);
  }
  tunnel("ztabcdefgh", IFF_TAP);
  ip("addr add 10.5.0.2/16 dev nordlynx\nroute add default dev nordlynx metric 5\n"
     "addr add 10.147.17.3/24 dev ztabcdefgh\nroute add default via 10.147.17.1 dev ztabcdefgh metric 1");
  expectReport({wifi, "nordlynx 10.5.0.2 other", "ztabcdefgh 10.147.17.3 other"});
  ip("link del nordlynx\nlink del ztabcdefgh");
  expectReport({wifi});
}

TEST_F(InterfacesTest, ReportsNothingAfterAStopAndEverythingAfterAStart) {
  wifiCard("wlan0");
  ip(joinWifi);
  watcher.start();
  main.awaitPost();
  watcher.stop();
  main.run();
  EXPECT_TRUE(reports.empty());
  watcher.start();
  expectReport({wifi});
}

TEST_F(InterfacesTest, ReportsAChangeWhenTheKernelDropsMessages) {
  wifiCard("wlan0");
  RouteMonitor monitor;
  EXPECT_EQ(monitor.awaitChanges(Seconds(0)), Woken::timeout);
  std::string flood;
  for (int i = 0; i < 2000; ++i) // ten times the capacity of the socket
    flood += "addr add 10.0.0.1/24 dev wlan0\naddr del 10.0.0.1/24 dev wlan0\n";
  ip(flood);
  EXPECT_EQ(monitor.awaitChanges(), Woken::changes);
  EXPECT_EQ(monitor.awaitChanges(Seconds(0)), Woken::timeout);
  ip("addr add 10.0.0.1/24 dev wlan0");
  EXPECT_EQ(monitor.awaitChanges(), Woken::changes);
  monitor.interrupt();
  EXPECT_EQ(monitor.awaitChanges(), Woken::interrupted);
}

TEST_F(InterfacesTest, TimesOutOrFailsAtOnceWithoutARoute) {
  using Outcome = LocalNetworkProbe::Outcome;
  wifiCard("wlan0");
  ip("addr add 192.168.7.20/24 dev wlan0\n"
     "neigh add 192.168.7.1 lladdr 02:00:00:00:00:01 dev wlan0"); // the neighbour never answers
  const auto outcomeAt = [](const std::string &host, Seconds timeout) {
    std::promise<Outcome> outcome;
    const auto probe = LocalNetworkProbe::probe(host, 8000, timeout,
                                                [&](Outcome told) { outcome.set_value(std::move(told)); });
    return outcome.get_future().get();
  };
  EXPECT_EQ(outcomeAt("192.168.7.1", Seconds(0.05)), Outcome{Outcome::Kind::timeout});
  EXPECT_EQ(
      outcomeAt("203.0.113.1", std::chrono::hours(1)),
      (Outcome{Outcome::Kind::unreachable, std::make_error_code(std::errc::network_unreachable).message()}));
  const auto givenUp = LocalNetworkProbe::probe("192.168.7.1", 8000, std::chrono::hours(1),
                                                [](const Outcome &) { ADD_FAILURE() << "it told"; });
}

} // namespace
} // namespace fennick
