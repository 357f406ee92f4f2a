#include "Quarrow/Terminal/TerminalQR.h"

#include "tests/Support/QRReader.h"

#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <vector>

namespace quarrow {
namespace {

constexpr std::string_view kURL = "http://192.168.1.20:8000/?k=aB3dE5gH7j";

enum class Ink { dark, light };

// Returns the pixels of a terminal with cells of one by two pixels. `ink` is its text colour.
std::vector<std::vector<bool>> darkPixels(const std::string &screen, Ink ink) {
  std::vector<std::vector<bool>> rows;
  std::string_view rest = screen;
  while (!rest.empty()) {
    std::array<std::vector<bool>, 2> pair;
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() + 1);
    while (!line.empty()) {
      const bool blank = line.front() == ' ';
      const std::string_view cell = line.substr(0, blank ? 1 : 3);
      line.remove_prefix(cell.size());
      const bool upper = cell == "█" || cell == "▀";
      const bool lower = cell == "█" || cell == "▄";
      pair[0].push_back(upper == (ink == Ink::dark));
      pair[1].push_back(lower == (ink == Ink::dark));
    }
    rows.insert(rows.end(), pair.begin(), pair.end());
  }
  return rows;
}

std::string readByPhone(const std::string &screen, Ink ink) {
  constexpr std::int64_t kScale = 4;
  const auto rows = darkPixels(screen, ink);
  const auto side = std::ssize(rows) * kScale;
  return fennick::test::readQRCode(side, [&](std::int64_t x, std::int64_t y) {
    const auto &row = rows[static_cast<std::size_t>(y / kScale)];
    const auto column = static_cast<std::size_t>(x / kScale);
    return column < row.size() && row[column];
  });
}

TEST(TerminalQRTest, DrawsACodeThatPhonesReadInAnyTheme) {
  const std::string code = *terminalQR(kURL, Colour::explicitBlackOnWhite);
  // Every row sets and resets its colours, so the theme has no effect.
  const std::regex row("\x1b\\[38;5;16;48;5;231m([^\x1b]*)\x1b\\[0m\n");
  EXPECT_TRUE(std::regex_match(code, std::regex("(\x1b\\[38;5;16;48;5;231m[^\x1b]*\x1b\\[0m\n)+")));
  EXPECT_EQ(readByPhone(std::regex_replace(code, row, "$1\n"), Ink::dark), kURL) << "is zbarimg installed?";
}

TEST(TerminalQRTest, DrawsTheCodeWithoutColours) {
  EXPECT_EQ(readByPhone(*terminalQR(kURL, Colour::none), Ink::dark), kURL) << "is zbarimg installed?";
}

} // namespace
} // namespace quarrow
