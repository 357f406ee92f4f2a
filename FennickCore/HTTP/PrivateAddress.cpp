#include "FennickCore/HTTP/PrivateAddress.h"

#include "FennickCore/Support/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

namespace fennick {

namespace {

using IPv4 = std::array<std::uint8_t, 4>;

std::optional<IPv4> parsedIPv4(std::string_view text) {
  IPv4 address{};
  const char *at = text.data();
  const char *end = text.data() + text.size();
  for (std::size_t i = 0; i < address.size(); ++i) {
    if (i > 0) {
      if (at == end || *at != '.')
        return std::nullopt;
      ++at;
    }
    const auto [stop, error] = std::from_chars(at, end, address[i]);
    if (error != std::errc{})
      return std::nullopt;
    at = stop;
  }
  return at == end ? std::optional(address) : std::nullopt;
}

bool isPrivate(const IPv4 &address) {
  const auto [a, b, c, d] = address;
  return a == 10 || a == 127 || (a == 169 && b == 254) || (a == 172 && b >= 16 && b <= 31) ||
         (a == 192 && b == 168);
}

} // namespace

bool isPrivateAddress(std::string_view remote) {
  const std::string lowered = lowerCased(remote.substr(0, remote.find('%')));
  std::string_view text = lowered;
  if (text.starts_with("::ffff:"))
    text.remove_prefix(7);
  if (const auto address = parsedIPv4(text))
    return isPrivate(*address);
  constexpr std::array<std::string_view, 6> kLocalPrefixes{"fe8", "fe9", "fea", "feb", "fc", "fd"};
  return text == "::1" ||
         std::ranges::any_of(kLocalPrefixes, [text](auto prefix) { return text.starts_with(prefix); });
}

} // namespace fennick
