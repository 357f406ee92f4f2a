#include "FennickCore/Network/FirewallNftables.h"

#include <array>
#include <utility>

namespace fennick::FirewallNftables {

namespace {

using Port = FirewallFinding::Port;

constexpr std::string_view kAlone = "{},;\n"; // each is a word of its own

// Words, separators and strings without their quotes; comments are left out.
std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    if (text[at] == '#') {
      end = std::min(text.find('\n', at), text.size());
    } else if (text[at] == '"') {
      end = std::min(text.find('"', end), text.size());
      words.push_back(text.substr(at + 1, end - at - 1));
      end = std::min(end + 1, text.size());
    } else if (kAlone.contains(text[at])) {
      words.push_back(text.substr(at, 1));
    } else if (text.substr(at).starts_with("\\\n")) {
      ++end; // the line goes on
    } else if (text[at] != ' ' && text[at] != '\t' && text[at] != '\r') {
      end = std::min(text.find_first_of(" \t\r\n{},;\"", at), text.size());
      words.push_back(text.substr(at, end - at));
    }
    at = end;
  }
  return words;
}

Port policyOf(std::string_view word) {
  if (word == "accept")
    return Port::open;
  return word == "drop" ? Port::closed : Port::unknown;
}

class Parser {
public:
  explicit Parser(std::string_view text) : words_(wordsOf(text)) {}

  Ruleset parsed() {
    while (!atEnd())
      readCommand();
    return std::move(ruleset_);
  }

private:
  [[nodiscard]] bool atEnd() const { return at_ == words_.size(); }
  [[nodiscard]] bool isAt(std::string_view word) const { return !atEnd() && words_[at_] == word; }
  [[nodiscard]] bool isAtSeparator() const { return isAt("\n") || isAt(";"); }
  bool accept(std::string_view word) {
    const bool isIt = isAt(word);
    at_ += isIt ? 1U : 0U;
    return isIt;
  }

  // The words up to the end of the line, or of the block that it stands in; those in braces may go over
  // several lines.
  Rule statement() {
    Rule words;
    for (int depth = 0; !atEnd(); ++at_) {
      if (depth == 0 && (isAtSeparator() || isAt("}")))
        break;
      depth += isAt("{") ? 1 : 0;
      depth -= isAt("}") ? 1 : 0;
      if (!isAt("\n"))
        words.push_back(words_[at_]);
    }
    return words;
  }

  void readCommand() {
    constexpr std::array<std::string_view, 3> kDefinitions{"define", "redefine", "undefine"};
    constexpr std::array<std::string_view, 3> kRemovals{"flush", "delete", "destroy"};
    if (isAtSeparator() || isAt("}")) {
      ++at_;
    } else if (accept("table")) {
      readTable();
    } else {
      const Rule words = statement();
      const auto is = [&](std::string_view word) { return words.front() == word; };
      const bool clearsTheWay = std::ranges::any_of(kRemovals, is) && ruleset_.chains.empty();
      ruleset_.isWhole &= clearsTheWay || std::ranges::any_of(kDefinitions, is);
    }
  }

  // The heading of a block: the words before its brace. Empty when there is no block.
  Rule heading() {
    Rule words;
    while (!atEnd() && !isAtSeparator() && !isAt("{") && !isAt("}"))
      words.push_back(words_[at_++]);
    if (!accept("{"))
      words.clear();
    return words;
  }

  void readTable() {
    const Rule names = heading();
    if (names.empty())
      return;
    std::string prefix = names.size() == 1 ? "ip " : "";
    for (const auto name : names)
      prefix.append(name).append(" ");
    while (!atEnd() && !accept("}"))
      readTableLine(prefix);
  }

  void readTableLine(const std::string &prefix) {
    if (isAtSeparator()) {
      ++at_;
    } else if (accept("chain")) {
      readChain(prefix);
    } else {
      const Rule words = statement(); // sets, counters and the like
      ruleset_.isWhole &= words.empty() || words.front() != "include";
    }
  }

  void readChain(const std::string &prefix) {
    const Rule name = heading();
    if (name.size() != 1)
      return;
    Chain &chain = ruleset_.chains[prefix + std::string(name.front())];
    while (!atEnd() && !accept("}")) {
      if (isAtSeparator())
        ++at_;
      else
        readChainLine(chain, statement());
    }
  }

  void readChainLine(Chain &chain, Rule words) {
    const auto word = [&](std::size_t index) { return index < words.size() ? words[index] : ""; };
    if (word(0) == "type")
      chain.isInput = word(1) == "filter" && word(3) == "input";
    else if (word(0) == "policy")
      chain.policy = policyOf(word(1));
    else if (word(0) == "include")
      ruleset_.isWhole = false;
    else
      chain.rules.push_back(std::move(words));
  }

  const std::vector<std::string_view> words_;
  std::size_t at_ = 0;
  Ruleset ruleset_;
};

} // namespace

Ruleset parse(std::string_view text) { return Parser(text).parsed(); }

} // namespace fennick::FirewallNftables
