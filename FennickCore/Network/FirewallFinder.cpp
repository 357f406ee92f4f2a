#include "FennickCore/Network/FirewallFinder.h"

#include "FennickCore/Network/FirewallUfw.h"
#include "FennickCore/Platform/Files/FileSystem.h"

#include <fmt/format.h>

#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

using Kind = FirewallFinding::Kind;
using Port = FirewallFinding::Port;

// Bytes. The settings have a few kilobytes; longer files are not read.
constexpr std::int64_t kLongestFile = 100'000;

FirewallFinding finding(Kind kind, Port port, std::string command) {
  return {.kind = kind, .port = port, .command = port == Port::open ? "" : std::move(command)};
}

Port portOf(const FirewalldAnswers &answers) {
  if (answers.hasPort == true || answers.target == "ACCEPT")
    return Port::open;
  return answers.hasPort && answers.target ? Port::closed : Port::unknown;
}

} // namespace

FirewallFinder::Sources FirewallFinder::Sources::system() {
  return {.root = "/", .firewalld = [](std::uint16_t port, const std::string &interface) {
            return askFirewalld(port, interface);
          }};
}

FirewallFinding FirewallFinder::find(std::uint16_t port, const std::string &interface) const {
  auto found = firewalld(port, interface);
  if (!found)
    found = ufw(port);
  return found.value_or(finding(Kind::none, Port::open, ""));
}

std::optional<FirewallFinding> FirewallFinder::firewalld(std::uint16_t port,
                                                         const std::string &interface) const {
  const auto answers = sources_.firewalld(port, interface);
  if (!answers)
    return std::nullopt;
  const std::string zone = answers->zone.empty() ? "" : fmt::format(" --zone={}", answers->zone);
  return finding(
      Kind::firewalld, portOf(*answers),
      fmt::format("sudo firewall-cmd{} --add-port={}/tcp --permanent && sudo firewall-cmd --reload", zone,
                  port));
}

std::optional<FirewallFinding> FirewallFinder::ufw(std::uint16_t port) const {
  const auto configuration = read("etc/ufw/ufw.conf");
  if (!configuration || !FirewallUfw::isEnabled(*configuration))
    return std::nullopt;
  return finding(Kind::ufw, FirewallUfw::port(read("etc/default/ufw").value_or("")),
                 fmt::format("sudo ufw allow {}/tcp", port));
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
