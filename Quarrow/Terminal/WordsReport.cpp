#include "Quarrow/Terminal/WordsReport.h"

#include "FennickCore/Platform/Text.h"
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

void print(std::string_view text) {
  std::ignore = std::fwrite(text.data(), 1, text.size(), stdout);
  std::ignore = std::fflush(stdout);
}

} // namespace

// Over the line of progress, if one is there: it always leaves the cursor at its beginning.
void WordsReport::printLine(const std::string &line) const {
  print(fmt::format("{}{}\n", options_.terminal ? kClearLine : "", line));
}

void WordsReport::listening(const Listening &state) {
  if (state.preferredPort != 0 && state.port != state.preferredPort)
    printLine(fmt::format("首选端口被占用，实际使用 {0} / Preferred port in use, using {0}", state.port));
  if (state.phoneURL) {
    const auto colour = options_.colour ? Colour::explicitBlackOnWhite : Colour::none;
    if (const auto code = options_.qr ? terminalQR(*state.phoneURL, colour) : std::nullopt)
      print("\n" + *code + "\n");
    printLine(fmt::format("手机扫码或打开 / Scan or open on the phone:\n  {}", *state.phoneURL));
  } else {
    printLine("没有可用的局域网地址，手机暂时连不上 / No usable network address, phones cannot connect yet");
    printLine(
        fmt::format("  本机 / on this computer: http://127.0.0.1:{}/?k={}", state.port, state.accessKey));
  }
  printLine(
      fmt::format("保存到 / Saving to:\n  {}\n", withoutControls(displayText(state.saveFolder.string()))));
}

void WordsReport::received(const Received &file) {
  printLine(fmt::format("✓ {}", withoutControls(displayText(file.note))));
}

void WordsReport::error(const std::string &message) {
  const std::string line = fmt::format("{}{}\n", options_.terminal ? kClearLine : "", message);
  std::ignore = std::fwrite(line.data(), 1, line.size(), stderr);
}

void WordsReport::progress(const fennick::UploadActivity::Snapshot &activity, double bytesPerSecond) {
  if (activity.uploads == 0)
    return print(kClearLine);
  const auto percent = activity.receivedBytes * 100 / activity.expectedBytes;
  print(fmt::format("{}↓ {} 个文件 / files · {} / {} · {} % · {}/s\r", kClearLine, activity.uploads,
                    fileSizeText(activity.receivedBytes), fileSizeText(activity.expectedBytes), percent,
                    fileSizeText(static_cast<std::int64_t>(bytesPerSecond))));
}

} // namespace quarrow
