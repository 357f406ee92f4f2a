#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

enum class HTTPParseError {
  malformedRequestLine, // no line, or a first line that is not exactly three words
  malformedHeader,      // a header line without ":" or with nothing before it
  unsupportedVersion,   // neither "HTTP/1.1" nor "HTTP/1.0"
};

// A request head, parsed in one piece once it is complete. A value without state; any thread.
struct HTTPRequestHead {
  std::string method;                         // upper-cased
  std::string path;                           // up to the first "?"; as sent: not decoded, not normalised
  std::map<std::string, std::string> query;   // decoded pairs after the first "?"; the last of a name wins
  std::map<std::string, std::string> headers; // names lower-cased, both trimmed; the last of a name wins

  bool operator==(const HTTPRequestHead &) const = default;

  // Reads the bytes of a head, with or without the blank line that ends it. Bytes that are not UTF-8 are read
  // as ISO Latin-1. Lines end with CRLF, or with LF in a head that has no CRLF at all. An unknown method, a
  // missing Host or an odd path is no error here.
  [[nodiscard]] static std::expected<HTTPRequestHead, HTTPParseError> parse(std::string_view bytes);

  // The value of a header; the name may be given in any case.
  [[nodiscard]] std::optional<std::string> header(std::string_view name) const;
  // The declared body length, which may be negative. Returns nullopt if it is absent, not a decimal number or
  // does not fit into 64 bits.
  [[nodiscard]] std::optional<std::int64_t> contentLength() const;
  // The media type without its parameters, lower-cased.
  [[nodiscard]] std::optional<std::string> contentType() const;
  // A "chunked" anywhere in the transfer encoding.
  [[nodiscard]] bool isChunked() const;
  [[nodiscard]] bool expectsContinue() const;
};

} // namespace fennick
