#include "FennickCore/Settings/AccessKey.h"

#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"

#include <cstdlib>

namespace fennick::AccessKey {

namespace {

__extension__ using Wide = unsigned __int128;

// Rejects words whose product with the count falls below this remainder, which would favour some characters:
// 2^64 modulo the count, in 64-bit arithmetic.
constexpr std::uint64_t kCount = kAlphabet.size();
constexpr std::uint64_t kRejectedBelow = (0 - kCount) % kCount;

char draw(const std::function<std::uint64_t()> &nextWord) {
  while (true) {
    const Wide product = Wide{nextWord()} * kCount;
    if (static_cast<std::uint64_t>(product) >= kRejectedBelow)
      return kAlphabet[static_cast<std::size_t>(product >> 64)];
  }
}

} // namespace

std::string generate(std::int64_t length) { return generate(length, randomWord); }

std::string generate(std::int64_t length, const std::function<std::uint64_t()> &nextWord) {
  if (length < 0) {
    log("an access key cannot have a negative length");
    std::abort();
  }
  std::string key;
  for (std::int64_t i = 0; i < length; ++i)
    key += draw(nextWord);
  return key;
}

} // namespace fennick::AccessKey
