#pragma once

#include "FennickCore/Network/FirewallRules.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Reads the rules that the system's nftables service loads, in the usual shape of such a file: tables,
// chains, rules of one line. What is not understood leaves doubt; any text is taken. All are pure; any
// thread.
namespace fennick::FirewallNftables {

// A rule's words, its sets with their braces and commas. They refer to the text that was read.
using Rule = std::vector<std::string_view>;

struct Chain {
  bool isInput = false; // it filters what comes to this computer
  FirewallFinding::Port policy = FirewallFinding::Port::open;
  std::vector<Rule> rules;
};

struct Ruleset {
  std::map<std::string, Chain> chains; // by family, table and name: "inet filter input"
  bool isWhole = true;                 // false when there is more to it than was understood
};

[[nodiscard]] Ruleset parse(std::string_view text);

struct Judgement {
  FirewallFinding::Port port = FirewallFinding::Port::unknown;
  std::vector<std::string> inTheWay{}; // the chains that refuse the arrival, or perhaps do
  bool operator==(const Judgement &) const = default;
};

// What becomes of the arrival; every chain that filters what comes has to let it in. `services` is the text
// of /etc/services, for ports that go by a name.
[[nodiscard]] Judgement judge(std::string_view text, std::string_view services, const Arrival &arrival);

} // namespace fennick::FirewallNftables
