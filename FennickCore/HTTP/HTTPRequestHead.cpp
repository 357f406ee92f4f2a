#include "FennickCore/HTTP/HTTPRequestHead.h"

#include "FennickCore/Support/Text.h"

#include <algorithm>
#include <array>

namespace fennick {

namespace {

// Removes the text up to `separator` from the front of `rest` and returns it; all of `rest` if there is none.
std::string_view takeUntil(std::string_view &rest, std::string_view separator) {
  const auto end = rest.find(separator);
  const std::string_view piece = rest.substr(0, end);
  rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + separator.size());
  return piece;
}

// Decodes "+" as a space and then escapes. Text with an invalid escape is returned unchanged.
std::string decodedQueryText(std::string_view text) {
  std::string spaced(text);
  std::ranges::replace(spaced, '+', ' ');
  return percentDecoded(spaced).value_or(std::string(text));
}

std::map<std::string, std::string> parsedQuery(std::string_view text) {
  std::map<std::string, std::string> query;
  while (!text.empty()) {
    std::string_view value = takeUntil(text, "&");
    const std::string_view key = takeUntil(value, "=");
    std::string name = decodedQueryText(key);
    if (!name.empty())
      query[std::move(name)] = decodedQueryText(value);
  }
  return query;
}

// Returns the words of the request line, or nullopt unless there are exactly three.
std::optional<std::array<std::string_view, 3>> requestWords(std::string_view line) {
  std::array<std::string_view, 3> words;
  std::size_t count = 0;
  while (!line.empty()) {
    const std::string_view word = takeUntil(line, " ");
    if (word.empty())
      continue;
    if (count == words.size())
      return std::nullopt;
    words[count++] = word;
  }
  if (count < words.size())
    return std::nullopt;
  return words;
}

std::expected<void, HTTPParseError> addHeader(std::string_view line,
                                              std::map<std::string, std::string> &headers) {
  if (line.find(':') == std::string_view::npos)
    return std::unexpected(HTTPParseError::malformedHeader);
  const std::string name = lowerCased(trimmed(takeUntil(line, ":")));
  if (name.empty())
    return std::unexpected(HTTPParseError::malformedHeader);
  headers[name] = trimmed(line);
  return {};
}

} // namespace

std::expected<HTTPRequestHead, HTTPParseError> HTTPRequestHead::parse(std::string_view bytes) {
  const std::string text = isValidUTF8(bytes) ? std::string(bytes) : utf8FromLatin1(bytes);
  std::string_view rest = text;
  const std::string_view lineEnd = rest.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";

  const auto words = requestWords(takeUntil(rest, lineEnd));
  if (!words)
    return std::unexpected(HTTPParseError::malformedRequestLine);
  std::string_view target = (*words)[1];
  const std::string_view version = (*words)[2];
  if (version != "HTTP/1.1" && version != "HTTP/1.0")
    return std::unexpected(HTTPParseError::unsupportedVersion);

  HTTPRequestHead head;
  head.method = upperCased((*words)[0]);
  head.path = takeUntil(target, "?");
  head.query = parsedQuery(target);
  while (!rest.empty()) {
    const std::string_view line = takeUntil(rest, lineEnd);
    if (line.empty())
      continue;
    if (auto added = addHeader(line, head.headers); !added)
      return std::unexpected(added.error());
  }
  return head;
}

std::optional<std::string> HTTPRequestHead::header(std::string_view name) const {
  const auto found = headers.find(lowerCased(name));
  if (found == headers.end())
    return std::nullopt;
  return found->second;
}

std::optional<std::int64_t> HTTPRequestHead::contentLength() const {
  const auto value = header("content-length");
  return value ? signedDecimal(trimmed(*value)) : std::nullopt;
}

std::optional<std::string> HTTPRequestHead::contentType() const {
  const auto value = header("content-type");
  if (!value)
    return std::nullopt;
  std::string type = lowerCased(trimmed(std::string_view(*value).substr(0, value->find(';'))));
  if (type.empty())
    return std::nullopt;
  return type;
}

bool HTTPRequestHead::isChunked() const {
  const auto value = header("transfer-encoding");
  return value && lowerCased(*value).find("chunked") != std::string::npos;
}

bool HTTPRequestHead::expectsContinue() const {
  const auto value = header("expect");
  return value && lowerCased(*value) == "100-continue";
}

} // namespace fennick
