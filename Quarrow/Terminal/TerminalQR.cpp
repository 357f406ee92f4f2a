#include "Quarrow/Terminal/TerminalQR.h"

#include "FennickCore/Network/QRCodeRenderer.h"

#include <cstdint>

namespace quarrow {

namespace {

constexpr std::int64_t kQuietModules = 4; // required by the QR standard

// 256-colour codes, since the terminal's theme redefines the sixteen basic colours.
constexpr std::string_view kBlackOnWhite = "\x1b[38;5;16;48;5;231m";
constexpr std::string_view kPlain = "\x1b[0m";

std::string_view halfBlock(bool upper, bool lower) {
  if (upper)
    return lower ? "█" : "▀";
  return lower ? "▄" : " ";
}

bool isDark(const fennick::QRModules &code, std::int64_t x, std::int64_t y) {
  return x >= 0 && y >= 0 && x < code.side && y < code.side && code.isDark(x, y);
}

} // namespace

std::optional<std::string> terminalQR(std::string_view text, Colour colour) {
  const auto code = fennick::QRCodeRenderer::modules(text);
  if (!code)
    return std::nullopt;
  const bool coloured = colour == Colour::explicitBlackOnWhite;
  std::string result;
  for (std::int64_t y = -kQuietModules; y < code->side + kQuietModules; y += 2) {
    result += coloured ? kBlackOnWhite : "";
    for (std::int64_t x = -kQuietModules; x < code->side + kQuietModules; ++x)
      result += halfBlock(isDark(*code, x, y), isDark(*code, x, y + 1));
    result += coloured ? kPlain : "";
    result += '\n';
  }
  return result;
}

} // namespace quarrow
