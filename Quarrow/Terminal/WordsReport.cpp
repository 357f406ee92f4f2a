#include "Quarrow/Terminal/WordsReport.h"

#include "FennickCore/Support/Text.h"
#include "Quarrow/Terminal/TerminalQR.h"

#include <fmt/format.h>

#include <cstdio>
#include <tuple>

namespace quarrow {

using fennick::displayText;
using fennick::fileSizeText;
using fennick::withoutControls;

namespace {

constexpr std::string_view kClearLine = "\x1b[K";
constexpr std::string_view kDim = "\x1b[2m";
constexpr std::string_view kPlain = "\x1b[0m";

void print(std::string_view text) {
  std::ignore = std::fwrite(text.data(), 1, text.size(), stdout);
  std::ignore = std::fflush(stdout);
}

// The text before the address; empty at the start and if the user asked.
std::string_view explanation(Report::Reason reason) {
  switch (reason) {
  case Report::Reason::address:
    return "地址变了，手机请用新的 / The address has changed, phones use the new one";
  case Report::Reason::port:
    return "端口变了，手机请用新的地址 / The port has changed, phones use the new address";
  case Report::Reason::key:
    return "密钥已重置，手机需要重新扫码 / The key was reset, phones scan again";
  case Report::Reason::folder:
    return "保存目录变了 / The save folder has changed";
  case Report::Reason::started:
  case Report::Reason::asked:
    break;
  }
  return {};
}

} // namespace

// Overwrites the progress line, if there is one: it always leaves the cursor at its beginning.
void WordsReport::printLine(const std::string &line) const {
  print(fmt::format("{}{}\n", options_.terminal ? kClearLine : "", line));
}

void WordsReport::listening(const Listening &state, Reason reason) {
  if (const auto why = explanation(reason); !why.empty() && state.phoneURL)
    printLine(fmt::format("\n{}", why));
  const bool first = reason == Reason::started;
  if ((first || reason == Reason::port) && state.preferredPort != 0 && state.port != state.preferredPort)
    printLine(fmt::format("首选端口被占用，实际使用 {0} / Preferred port in use, using {0}", state.port));
  if (reason != Reason::folder)
    printAddress(state);
  if (first || reason == Reason::folder)
    printLine(
        fmt::format("保存到 / Saving to:\n  {}\n", withoutControls(displayText(state.saveFolder.string()))));
  if (first && options_.keys)
    printLine(fmt::format("{}按 ? 看按键 / press ? for the keys{}", options_.colour ? kDim : "",
                          options_.colour ? kPlain : ""));
}

void WordsReport::printAddress(const Listening &state) const {
  if (state.phoneURL) {
    const auto colour = options_.colour ? Colour::explicitBlackOnWhite : Colour::none;
    if (const auto code = options_.qr ? terminalQR(*state.phoneURL, colour) : std::nullopt)
      printLine("\n" + *code);
    printLine(fmt::format("手机扫码或打开 / Scan or open on the phone:\n  {}", *state.phoneURL));
  } else {
    printLine("没有可用的局域网地址，手机暂时连不上 / No usable network address, phones cannot connect yet");
    printLine(
        fmt::format("  本机 / on this computer: http://127.0.0.1:{}/?k={}", state.port, state.accessKey));
  }
}

void WordsReport::received(const Received &file) {
  printLine(fmt::format("✓ {}", withoutControls(displayText(file.note))));
}

void WordsReport::error(const std::string &message) {
  const std::string line = fmt::format("{}{}\n", options_.terminal ? kClearLine : "", message);
  std::ignore = std::fwrite(line.data(), 1, line.size(), stderr);
}

void WordsReport::errorsSolved() { printLine("✓ 问题已经解决 / The problem is solved"); }

void WordsReport::check(const Check &result) {
  if (!result.passed)
    printLine(fmt::format("✗ 自检没有通过，手机可能连不上：{}。换一个网络，或先关掉 VPN\n"
                          "  The service does not answer under its address. Try another network, or turn "
                          "the VPN off",
                          withoutControls(result.message)));
  else if (checkFailed_)
    printLine("✓ 自检通过了 / The service answers again");
  checkFailed_ = !result.passed;
}

void WordsReport::firewall(const fennick::FirewallFinding &finding) {
  const bool closed = finding.port == fennick::FirewallFinding::Port::closed;
  printLine(fmt::format("{}\n  {}",
                        closed
                            ? "这台电脑的防火墙挡住了手机，运行下面的命令放行 / This computer's firewall "
                              "keeps phones out. This lets them in:"
                            : "这台电脑开着防火墙，如果手机连不上，运行下面的命令放行 / This computer has a "
                              "firewall. If phones cannot connect, this lets them in:",
                        finding.command));
}

void WordsReport::bell() {
  if (options_.terminal)
    print("\a");
}

void WordsReport::progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) {
  progress_.clear();
  if (activity.uploads > 0)
    progress_ = fmt::format("↓ {} 个文件 / files · {} / {} · {} % · {}/s", activity.uploads,
                            fileSizeText(activity.receivedBytes), fileSizeText(activity.expectedBytes),
                            activity.receivedBytes * 100 / activity.expectedBytes,
                            fileSizeText(static_cast<std::int64_t>(bytesPerSecond)));
  printStatus();
}

void WordsReport::waiting(int photos) {
  waiting_ = photos;
  if (options_.terminal)
    printStatus();
}

void WordsReport::printStatus() const {
  std::string line = progress_;
  if (waiting_ > 0)
    line += fmt::format("{}还有 {} 张照片等待处理 / photos waiting: {}", line.empty() ? "" : " · ", waiting_,
                        waiting_);
  print(fmt::format("{}{}{}", kClearLine, line, line.empty() ? "" : "\r"));
}

} // namespace quarrow
