#include "tests/Support/QRReader.h"

#include "tests/Support/TemporaryFolder.h"

#include <fmt/format.h>

#include <cstdio>
#include <memory>

namespace fennick::test {

namespace {

std::string outputOf(const std::string &command) {
  struct Close {
    void operator()(FILE *stream) const { ::pclose(stream); }
  };
  const std::unique_ptr<FILE, Close> stream(::popen(command.c_str(), "r"));
  std::string output;
  for (int c = 0; stream && (c = std::fgetc(stream.get())) != EOF;)
    output += static_cast<char>(c);
  return output;
}

} // namespace

std::string readQRCode(std::int64_t side, const std::function<bool(std::int64_t x, std::int64_t y)> &isDark) {
  std::string picture = fmt::format("P5 {0} {0} 255\n", side);
  for (std::int64_t y = 0; y < side; ++y)
    for (std::int64_t x = 0; x < side; ++x)
      picture += isDark(x, y) ? '\0' : '\xFF';
  const TemporaryFolder folder;
  const auto file = folder.write("code.pgm", picture);
  std::string text =
      outputOf(fmt::format("zbarimg -q --raw --nodbus -Sdisable -Sqrcode.enable '{}'", file.string()));
  if (text.ends_with('\n'))
    text.pop_back();
  return text;
}

} // namespace fennick::test
