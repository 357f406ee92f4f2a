#include "FennickCore/Platform/System/Random.h"

#include <fmt/format.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <tuple>

namespace fennick {

void fillRandom(std::span<std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::getrandom(bytes.data(), bytes.size(), 0);
    if (count < 0 && errno == EINTR)
      continue;
    if (count <= 0) {
      std::ignore = std::fputs("fennick: no secure random source\n", stderr);
      std::abort();
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

std::uint64_t randomWord() {
  std::uint64_t word = 0;
  fillRandom(std::as_writable_bytes(std::span(&word, 1)));
  return word;
}

std::string newUUID() {
  std::array<std::uint64_t, 2> words{randomWord(), randomWord()};
  words[0] = (words[0] & ~0xF000ULL) | 0x4000ULL;                        // version 4
  words[1] = (words[1] & 0x3FFFFFFFFFFFFFFFULL) | 0x8000000000000000ULL; // variant 1
  return fmt::format("{:08X}-{:04X}-{:04X}-{:04X}-{:012X}", words[0] >> 32, words[0] >> 16 & 0xFFFF,
                     words[0] & 0xFFFF, words[1] >> 48, words[1] & 0xFFFFFFFFFFFFULL);
}

bool isUUID(std::string_view text) {
  constexpr std::string_view kShape = "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX";
  return std::ranges::equal(kShape, text, [](char shape, char c) {
    return shape == 'X' ? (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') : c == shape;
  });
}

} // namespace fennick
