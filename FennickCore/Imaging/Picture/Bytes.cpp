#include "FennickCore/Imaging/Picture/Bytes.h"

#include <algorithm>
#include <cassert>

namespace fennick::picture {

std::optional<std::string_view> slice(std::string_view data, std::uint64_t at, std::uint64_t length) {
  if (at > data.size() || length > data.size() - at)
    return std::nullopt;
  return data.substr(at, length);
}

std::optional<std::uint64_t> readNumber(std::string_view data, std::uint64_t at, std::size_t width,
                                        ByteOrder order) {
  assert(width <= 8);
  const auto digits = slice(data, at, width);
  if (!digits)
    return std::nullopt;
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t from = order == ByteOrder::big ? i : width - 1 - i;
    value = value << 8 | static_cast<unsigned char>((*digits)[from]);
  }
  return value;
}

void writeNumber(std::string &data, std::size_t at, std::uint64_t value, std::size_t width, ByteOrder order) {
  data.replace(at, width, numberText(value, width, order));
}

std::string numberText(std::uint64_t value, std::size_t width, ByteOrder order) {
  assert(width <= 8);
  std::string text(width, '\0');
  for (std::size_t i = 0; i < width; ++i, value >>= 8)
    text[order == ByteOrder::big ? width - 1 - i : i] = static_cast<char>(value & 0xFF);
  return text;
}

void zero(std::string &data, std::uint64_t at, std::uint64_t length) {
  if (at >= data.size())
    return;
  const std::size_t count = std::min<std::uint64_t>(length, data.size() - at);
  std::fill_n(data.begin() + static_cast<std::ptrdiff_t>(at), count, '\0');
}

} // namespace fennick::picture
