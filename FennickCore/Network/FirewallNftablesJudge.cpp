#include "FennickCore/Network/FirewallNftables.h"
#include "FennickCore/Support/Text.h"

#include <array>
#include <functional>
#include <span>

namespace fennick::FirewallNftables {

namespace {

using Port = FirewallFinding::Port;
using Words = std::span<const std::string_view>;
using Services = std::map<std::string_view, std::string_view>;

template <std::size_t N>
using List = std::array<std::string_view, N>;

bool isAmong(std::string_view word, Words words) { return std::ranges::find(words, word) != words.end(); }

Words wordsOf(std::string_view line, std::span<std::string_view> room) {
  std::size_t count = 0;
  for (std::size_t at = 0; count < room.size(); ++count) {
    at = std::min(line.find_first_not_of(" \t\r", at), line.size());
    const std::size_t end = std::min(line.find_first_of(" \t\r", at), line.size());
    if (at == end)
      break;
    room[count] = line.substr(at, end - at);
    at = end;
  }
  return room.first(count);
}

// The TCP ports by name, from lines such as "http-alt 8080/tcp webcache # comment".
Services servicesIn(std::string_view text) {
  Services services;
  std::array<std::string_view, 8> room; // nobody has that many names
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    const Words words = wordsOf(line.substr(0, line.find('#')), room);
    if (words.size() < 2 || !words[1].ends_with("/tcp"))
      continue;
    const std::string_view port = words[1].substr(0, words[1].size() - 4);
    for (const auto name : words)
      services.try_emplace(name, port);
  }
  return services;
}

// Reads one rule from left to right: its conditions, which must all hold, and what it does then.
class RuleReader {
public:
  enum class Does { nothing, accept, refuse, jump, leave, unclear };

  RuleReader(const Rule &rule, const Services &services, const Arrival &arrival)
      : words_(rule), services_(services), arrival_(arrival) {
    while (at_ < words_.size() && does_ == Does::nothing)
      readNext();
  }
  [[nodiscard]] Applies applies() const { return applies_; }
  [[nodiscard]] Does does() const { return does_; }
  [[nodiscard]] std::string_view target() const { return target_; } // of a jump

private:
  using Test = std::function<Applies(std::string_view item)>;

  [[nodiscard]] std::string_view peek() const {
    return at_ < words_.size() ? words_[at_] : std::string_view();
  }
  std::string_view next() {
    const auto word = peek();
    at_ += at_ < words_.size() ? 1U : 0U;
    return word;
  }
  bool accept(std::string_view word) {
    const bool isIt = peek() == word;
    at_ += isIt ? 1U : 0U;
    return isIt;
  }

  void readNext() {
    accept("meta");
    const auto word = next();
    if (!readAction(word) && !readRemark(word) && !readCondition(word))
      require(Applies::perhaps);
  }

  bool readAction(std::string_view word) {
    if (word == "accept")
      does_ = Does::accept;
    else if (word == "drop" || word == "reject")
      does_ = Does::refuse;
    else if (word == "return")
      does_ = Does::leave;
    else if (word == "queue" || word == "vmap")
      does_ = Does::unclear;
    else if (word == "jump" || word == "goto")
      does_ = Does::jump, target_ = next();
    return does_ != Does::nothing;
  }

  // What counts or writes but decides nothing.
  bool readRemark(std::string_view word) {
    if (word == "comment")
      next();
    else if (word == "counter")
      skipOptions(List<3>{"packets", "bytes", "name"});
    else if (word == "log")
      skipOptions(List<6>{"prefix", "level", "group", "snaplen", "queue-threshold", "flags"});
    else
      return word == "continue";
    return true;
  }
  void skipOptions(Words names) {
    while (isAmong(peek(), names)) {
      next();
      next();
    }
  }

  bool readCondition(std::string_view word) {
    constexpr List<9> kOtherProtocols{"udp",  "udplite", "icmp", "icmpv6", "igmp",
                                      "sctp", "dccp",    "esp",  "ip6"};
    if (word == "iif" || word == "iifname")
      requireValue([&](std::string_view item) { return interfaceApplies(item, arrival_); });
    else if (word == "l4proto" || (word == "ip" && accept("protocol")))
      requireOneOf(List<2>{"tcp", "6"});
    else if (word == "nfproto")
      requireOneOf(List<1>{"ipv4"});
    else if (word == "pkttype")
      requireOneOf(List<2>{"host", "unicast"});
    else if (word == "ct" && accept("state"))
      requireOneOf(List<1>{"new"});
    else if ((word == "tcp" || word == "th") && accept("dport"))
      requireValue([&](std::string_view item) { return portNamedApplies(item); });
    else if (isAmong(word, kOtherProtocols))
      require(Applies::no);
    else
      return false;
    return true;
  }

  [[nodiscard]] Applies portNamedApplies(std::string_view item) const {
    const auto named = services_.find(item);
    return portApplies(named == services_.end() ? item : named->second, '-', arrival_);
  }

  void require(Applies applies) { applies_ = std::min(applies_, applies); }
  void requireOneOf(Words names) {
    requireValue([&](std::string_view item) {
      if (item.empty() || item.starts_with('$') || item.starts_with('@'))
        return Applies::perhaps;
      return isAmong(item, names) ? Applies::yes : Applies::no;
    });
  }

  // A value, several with commas between, or a set of them; of a map the keys count.
  void requireValue(const Test &test) {
    const bool isOpposite = accept("!=");
    accept("==");
    const bool isMap = accept("vmap");
    Applies any = Applies::no;
    if (accept("{"))
      any = testSet(test);
    else
      do
        any = std::max(any, test(next()));
      while (accept(","));
    any = isOpposite ? opposite(any) : any;
    require(isMap ? std::min(any, Applies::perhaps) : any);
    does_ = isMap ? Does::unclear : does_;
  }
  Applies testSet(const Test &test) {
    Applies any = Applies::no;
    for (bool isFirst = true; at_ < words_.size() && !accept("}");) {
      const auto word = next();
      if (isFirst)
        any = std::max(any, test(word));
      isFirst = word == ",";
    }
    return any;
  }

  const Rule &words_;
  const Services &services_;
  const Arrival &arrival_;
  std::size_t at_ = 0;
  Applies applies_ = Applies::yes;
  Does does_ = Does::nothing;
  std::string_view target_;
};

class Walker {
public:
  Walker(const Ruleset &ruleset, const Services &services, const Arrival &arrival)
      : ruleset_(ruleset), services_(services), arrival_(arrival) {}

  Port outcome(const std::string &name, const Chain &chain) {
    FirewallWalk walk;
    follow(name.substr(0, name.rfind(' ') + 1), chain, walk, 0);
    const Port port = walk.outcome(chain.policy);
    return ruleset_.isWhole ? port : Port::unknown;
  }

private:
  // The kernel allows 16 jumps within one another.
  static constexpr int kDeepest = 16;
  // Chains that jump to each other again and again are more work than any computer's firewall is.
  static constexpr int kMostRules = 100'000;

  void follow(const std::string &table, const Chain &chain, FirewallWalk &walk, int depth) {
    for (const Rule &rule : chain.rules) {
      if (++rules_ > kMostRules)
        return walk.meet(Applies::yes, Port::unknown);
      const RuleReader read(rule, services_, arrival_);
      if (read.applies() == Applies::yes && read.does() == RuleReader::Does::leave)
        return;
      meet(table, read, walk, depth);
      if (walk.isDecided())
        return;
    }
  }

  void meet(const std::string &table, const RuleReader &rule, FirewallWalk &walk, int depth) {
    switch (rule.does()) {
    case RuleReader::Does::nothing:
      return;
    case RuleReader::Does::accept:
      return walk.meet(rule.applies(), Port::open);
    case RuleReader::Does::refuse:
      return walk.meet(rule.applies(), Port::closed);
    case RuleReader::Does::jump:
      return jump(table, rule, walk, depth);
    case RuleReader::Does::leave:
    case RuleReader::Does::unclear:
      return walk.meet(rule.applies(), Port::unknown);
    }
  }

  void jump(const std::string &table, const RuleReader &rule, FirewallWalk &walk, int depth) {
    const auto target = ruleset_.chains.find(table + std::string(rule.target()));
    if (target == ruleset_.chains.end() || depth == kDeepest)
      return walk.meet(rule.applies(), Port::unknown);
    if (rule.applies() == Applies::yes)
      return follow(table, target->second, walk, depth + 1);
    FirewallWalk branch;
    if (rule.applies() == Applies::perhaps)
      follow(table, target->second, branch, depth + 1);
    walk.meetPerhaps(branch);
  }

  const Ruleset &ruleset_;
  const Services &services_;
  const Arrival &arrival_;
  int rules_ = 0;
};

// Chains for IPv6, bridges and the like see nothing of phones.
bool seesPhones(const std::string &name, const Chain &chain) {
  return chain.isInput && (name.starts_with("inet ") || name.starts_with("ip "));
}

} // namespace

Judgement judge(std::string_view text, std::string_view services, const Arrival &arrival) {
  const Ruleset ruleset = parse(text);
  const Services known = servicesIn(services);
  Walker walker(ruleset, known, arrival);
  Judgement judgement{.port = ruleset.isWhole ? Port::open : Port::unknown};
  for (const auto &[name, chain] : ruleset.chains) {
    const Port port = seesPhones(name, chain) ? walker.outcome(name, chain) : Port::open;
    if (port == Port::open)
      continue;
    judgement.inTheWay.push_back(name);
    if (judgement.port != Port::closed)
      judgement.port = port;
  }
  return judgement;
}

} // namespace fennick::FirewallNftables
