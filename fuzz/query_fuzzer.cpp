// Parses the query of a request target, and percent escapes on their own.
#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/Support/Text.h"
#include "fuzz/Property.h"

#include <algorithm>
#include <string>

using namespace fennick;
using fennick::fuzz::require;

namespace {

std::string escaped(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    result += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view text = fuzz::textOf(data, size);
  if (const auto decoded = percentDecoded(text)) {
    require(isValidUTF8(*decoded) && decoded->size() <= text.size());
    require(percentDecoded(escaped(*decoded)) == decoded);
  }
  require(percentDecoded(escaped(text)).has_value() == isValidUTF8(text));

  std::string target = "/?" + std::string(text);
  std::ranges::replace(target, ' ', '+');
  std::ranges::replace(target, '\n', '+');
  const auto head = HTTPRequestHead::parse("GET " + target + " HTTP/1.1");
  require(head.has_value() && head->path == "/");
  for (const auto &[name, value] : head->query)
    require(!name.empty() && isValidUTF8(name) && isValidUTF8(value));
  return 0;
}
