#include "Quarrow/Terminal/TerminalKeys.h"

#include "FennickCore/Support/Text.h"
#include "Quarrow/App/ServerModel.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace quarrow {

namespace {

constexpr char kEscape = '\x1b';

constexpr const char *kHelp = "  c  再看二维码和地址 / the code and the address again\n"
                              "  n  换一个网络的地址 / the address on the next network\n"
                              "  k  重置密钥 / reset the key\n"
                              "  o  打开保存目录 / open the save folder\n"
                              "  q  结束 / end";

constexpr const char *kQuestion =
    "Codes that were scanned and addresses in shortcuts stop working; phones scan the new code.\n"
    "重置吗？按 y 重置，其他键取消 / Reset the key? y resets it, any other key does not";

} // namespace

TerminalKeys::TerminalKeys(Actions actions, Report &report) : actions_(std::move(actions)), report_(report) {}

void TerminalKeys::typed(std::string_view keys) {
  const bool functionKey = keys.contains(kEscape);
  const std::string known = fennick::lowerCased(keys.substr(0, keys.find(kEscape)));
  for (const char key : known)
    press(key);
  if (functionKey && asking_)
    answer(kEscape);
}

void TerminalKeys::press(char key) {
  if (asking_)
    answer(key);
  else
    obey(key);
}

void TerminalKeys::answer(char key) {
  asking_ = false;
  if (key == 'y')
    return actions_.resetKey();
  report_.notice("密钥没有变 / The key stays");
}

void TerminalKeys::obey(char key) {
  switch (key) {
  case 'c':
    return actions_.showCode();
  case 'n':
    return actions_.nextAddress();
  case 'k':
    asking_ = true;
    return report_.notice(fmt::format("{}\n{}", ServerModel::resetKeyWarning().toStdString(), kQuestion));
  case 'o':
    return actions_.openFolder();
  case 'q':
    return actions_.quit();
  case '?':
    return report_.notice(kHelp);
  default:
    break;
  }
}

std::optional<std::string> nextInterface(std::span<const fennick::LANAddress> addresses,
                                         const std::optional<fennick::LANAddress> &present) {
  std::vector<std::string> names;
  for (const auto &address : addresses)
    if (std::ranges::find(names, address.interface) == names.end())
      names.push_back(address.interface);
  if (names.size() < 2 || !present)
    return std::nullopt;
  const auto at = std::next(std::ranges::find(names, present->interface));
  return at == names.end() ? names.front() : *at;
}

} // namespace quarrow
