#include "FennickCore/Imaging/Picture/MetadataPng.h"

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

int hexValue(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

std::string pngLegacyProfile(std::string_view text) {
  for (int lines = 0; lines < 2; ++lines) {
    const std::size_t start = text.find_first_not_of(" \n");
    text = start == std::string_view::npos ? "" : text.substr(start);
    text = behind(text, text.find('\n'));
  }
  std::string bytes;
  int high = -1;
  for (const char c : text) {
    const int digit = hexValue(c);
    if (digit >= 0 && high >= 0)
      bytes += static_cast<char>(high * 16 + digit);
    if (digit >= 0)
      high = high >= 0 ? -1 : digit;
  }
  return bytes;
}

bool isPngText(const Chunk &chunk) {
  return chunk.type == "tEXt"sv || chunk.type == "zTXt"sv || chunk.type == "iTXt"sv;
}

std::string_view pngKeyword(const Chunk &chunk, std::string_view file) {
  const std::string_view payload = chunk.payload(file);
  return payload.substr(0, payload.find('\0'));
}

std::string pngText(const Chunk &chunk, std::string_view file, Unpacker &unpack) {
  const std::string_view rest = behind(chunk.payload(file), pngKeyword(chunk, file).size() + 1);
  if (chunk.type == "tEXt"sv)
    return std::string(rest);
  if (chunk.type == "zTXt"sv)
    return unpack(behind(rest, 1));
  const auto text = chunk.type == "iTXt"sv ? internationalText(rest) : std::nullopt;
  if (!text)
    return {};
  return text->isPacked ? unpack(text->text) : std::string(text->text);
}

} // namespace fennick::picture
