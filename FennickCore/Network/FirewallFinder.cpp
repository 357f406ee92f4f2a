#include "FennickCore/Network/FirewallFinder.h"

#include "FennickCore/Network/FirewallNftables.h"
#include "FennickCore/Network/FirewallUfw.h"
#include "FennickCore/Platform/Files/FileSystem.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace fennick {

namespace fs = std::filesystem;

namespace {

using Kind = FirewallFinding::Kind;
using Port = FirewallFinding::Port;

// The longest of the files, /etc/services, has 700 KB on some systems. Longer ones are not read.
constexpr std::int64_t kLongestFile = 2'000'000;

FirewallFinding finding(Kind kind, Port port, std::string command) {
  return {.kind = kind, .port = port, .command = port == Port::open ? "" : std::move(command)};
}

Port portOf(const FirewalldAnswers &answers) {
  if (answers.hasPort == true || answers.target == "ACCEPT")
    return Port::open;
  return answers.hasPort && answers.target ? Port::closed : Port::unknown;
}

// A rule at the head of each chain: what comes first decides.
std::string insertion(std::vector<std::string> chains, std::uint16_t port) {
  if (chains.empty())
    chains.emplace_back("inet filter input"); // as they are called nearly everywhere
  std::string command;
  for (const auto &chain : chains)
    command += fmt::format("{}sudo nft insert rule {} tcp dport {} accept", command.empty() ? "" : " && ",
                           chain, port);
  return command;
}

bool isServiceEnabled(const fs::path &root) {
  constexpr std::array kTargets{"sysinit.target.wants", "multi-user.target.wants"};
  return std::ranges::any_of(kTargets, [&](const char *target) {
    return fileKind(root / "etc/systemd/system" / target / "nftables.service").has_value();
  });
}

} // namespace

FirewallFinder::Sources FirewallFinder::Sources::system() {
  return {.root = "/", .firewalld = [](std::uint16_t port, const std::string &interface) {
            return askFirewalld(port, interface);
          }};
}

FirewallFinding FirewallFinder::find(std::uint16_t port, const std::string &interface) const {
  const Arrival arrival{.port = port, .interface = interface};
  auto found = firewalld(arrival);
  if (!found)
    found = ufw(arrival);
  if (!found)
    found = nftables(arrival);
  return found.value_or(finding(Kind::none, Port::open, ""));
}

std::optional<FirewallFinding> FirewallFinder::firewalld(const Arrival &arrival) const {
  const auto answers = sources_.firewalld(arrival.port, arrival.interface);
  if (!answers)
    return std::nullopt;
  const std::string zone = answers->zone.empty() ? "" : fmt::format(" --zone={}", answers->zone);
  return finding(
      Kind::firewalld, portOf(*answers),
      fmt::format("sudo firewall-cmd{} --add-port={}/tcp --permanent && sudo firewall-cmd --reload", zone,
                  arrival.port));
}

std::optional<FirewallFinding> FirewallFinder::ufw(const Arrival &arrival) const {
  const auto configuration = read("etc/ufw/ufw.conf");
  if (!configuration || !FirewallUfw::isEnabled(*configuration))
    return std::nullopt;
  const auto port =
      FirewallUfw::port(read("etc/default/ufw").value_or(""), read("etc/ufw/user.rules"), arrival);
  return finding(Kind::ufw, port, fmt::format("sudo ufw allow {}/tcp", arrival.port));
}

std::optional<FirewallFinding> FirewallFinder::nftables(const Arrival &arrival) const {
  if (!isServiceEnabled(sources_.root))
    return std::nullopt;
  FirewallNftables::Judgement judgement;
  if (const auto rules = read("etc/nftables.conf"))
    judgement = FirewallNftables::judge(*rules, read("etc/services").value_or(""), arrival);
  return finding(Kind::nftables, judgement.port, insertion(judgement.inTheWay, arrival.port));
}

// Returns nullopt if the user may not read the file.
std::optional<std::string> FirewallFinder::read(const char *file) const {
  const fs::path path = sources_.root / file;
  std::error_code unreadable;
  if (fs::file_size(path, unreadable) > kLongestFile || unreadable)
    return std::nullopt;
  const auto content = readFile(path);
  return content ? std::optional(*content) : std::nullopt;
}

} // namespace fennick
