#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>

namespace fennick {

namespace {

constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::optional<unsigned char> hexValue(char c) {
  if (c >= '0' && c <= '9')
    return static_cast<unsigned char>(c - '0');
  if (c >= 'a' && c <= 'f')
    return static_cast<unsigned char>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F')
    return static_cast<unsigned char>(c - 'A' + 10);
  return std::nullopt;
}

template <typename Change>
std::string mapped(std::string_view text, Change change) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), change);
  return result;
}

// Formats a number with at most `digits` decimals and without trailing zeros.
std::string shortNumber(double value, int digits) {
  std::string text = fmt::format("{:.{}f}", value, digits);
  if (text.find('.') != std::string::npos) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
      text.pop_back();
  }
  return text;
}

} // namespace

bool isValidUTF8(std::string_view text) {
  // g_utf8_validate_len rejects NUL, which is an ordinary character here.
  while (true) {
    const std::size_t nul = text.find('\0');
    const std::string_view piece = text.substr(0, nul);
    if (g_utf8_validate_len(piece.data(), piece.size(), nullptr) == FALSE)
      return false;
    if (nul == std::string_view::npos)
      return true;
    text.remove_prefix(nul + 1);
  }
}

std::string utf8FromLatin1(std::string_view bytes) {
  std::string result;
  result.reserve(bytes.size());
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      result += c;
    } else {
      result += static_cast<char>(0xC0 | (byte >> 6));
      result += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return result;
}

std::string displayText(std::string_view text) {
  if (text.empty())
    return {};
  const std::unique_ptr<char, decltype(&g_free)> valid(
      g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), &g_free);
  return valid.get();
}

std::string withoutControls(std::string_view text) {
  std::string result = mapped(text, [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F ? ' ' : c; });
  // U+0080 to U+009F: terminals read U+009B as the start of a control sequence.
  for (auto at = result.find('\xC2'); at != std::string::npos; at = result.find('\xC2', at + 1))
    if (at + 1 < result.size() && static_cast<unsigned char>(result[at + 1]) < 0xA0)
      result.replace(at, 2, "  ");
  return result;
}

std::string oneLine(std::string_view text, std::size_t mostBytes) {
  const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
  std::string line = withoutControls(displayText(text));
  if (line.size() > mostBytes) {
    while (mostBytes > 0 && continues(line[mostBytes]))
      --mostBytes;
    line.resize(mostBytes);
  }
  return std::string(trimmed(line));
}

std::string lowerCased(std::string_view text) {
  return mapped(text, [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
}

std::string upperCased(std::string_view text) {
  return mapped(text, [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
}

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::optional<std::string> percentDecoded(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      result += text[i];
      continue;
    }
    if (i + 2 >= text.size())
      return std::nullopt;
    const auto high = hexValue(text[i + 1]);
    const auto low = hexValue(text[i + 2]);
    if (!high || !low)
      return std::nullopt;
    result += static_cast<char>(*high << 4 | *low);
    i += 2;
  }
  if (!isValidUTF8(result))
    return std::nullopt;
  return result;
}

std::optional<std::int64_t> signedDecimal(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-'))
      return std::nullopt;
  }
  std::int64_t value = 0;
  const char *end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(std::to_address(text.begin()), end, value);
  if (error != std::errc{} || stop != end)
    return std::nullopt;
  return value;
}

std::string base64(std::span<const std::byte> bytes) {
  std::string result;
  result.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t word = 0;
    for (std::size_t j = 0; j < 3; ++j)
      word = word << 8 | (j < count ? std::to_integer<std::uint32_t>(bytes[i + j]) : 0);
    for (std::size_t j = 0; j < 4; ++j)
      result += j <= count ? kBase64Alphabet[word >> (18 - 6 * j) & 63] : '=';
  }
  return result;
}

std::optional<std::vector<std::byte>> base64Decoded(std::string_view text) {
  std::vector<std::byte> result;
  std::uint32_t word = 0;
  int bits = 0;
  std::size_t length = text.size();
  while (length > 0 && text.size() - length < 2 && text[length - 1] == '=')
    --length;
  for (const char c : text.substr(0, length)) {
    const auto value = kBase64Alphabet.find(c);
    if (value == std::string_view::npos)
      return std::nullopt;
    word = word << 6 | static_cast<std::uint32_t>(value);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      result.push_back(static_cast<std::byte>(word >> bits & 0xFF));
    }
  }
  if (base64(result) != text)
    return std::nullopt;
  return result;
}

std::string fileSizeText(std::int64_t bytes) {
  struct Unit {
    double size;
    int digits;
    std::string_view name;
  };
  static constexpr std::array kUnits{Unit{1e3, 0, "KB"}, Unit{1e6, 1, "MB"}, Unit{1e9, 2, "GB"},
                                     Unit{1e12, 2, "TB"}};
  if (bytes == 0)
    return "0 KB";
  if (bytes < 1000)
    return fmt::format("{} 字节", bytes);
  const auto value = static_cast<double>(bytes);
  // A count that would round up to 1000 of its unit is written in the next unit: 999,999 is "1 MB".
  const auto fits = [value](const Unit &unit) {
    const double scale = std::pow(10, unit.digits);
    return std::round(value / unit.size * scale) / scale < 1000;
  };
  const auto *const unit = std::ranges::find_if(kUnits, fits);
  const Unit &chosen = unit == kUnits.end() ? kUnits.back() : *unit;
  return fmt::format("{} {}", shortNumber(value / chosen.size, chosen.digits), chosen.name);
}

} // namespace fennick
