#pragma once

#include <cstdint>
#include <expected>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace fennick {

enum class HTTPParseError {
  malformedRequestLine, // no line, or a first line without exactly three words
  malformedHeader,      // a header line without ":" or with nothing before it
  unsupportedVersion,   // neither "HTTP/1.1" nor "HTTP/1.0"
};

// A parsed request head. A value; any thread.
struct HTTPRequestHead {
  std::string method;                       // upper-cased
  std::string path;                         // up to the first "?"; as sent: not decoded, not normalised
  std::map<std::string, std::string> query; // decoded pairs after the first "?"; the last of a name wins
  std::map<std::string, std::string>
      headers; // names in lower case, both trimmed; the last header of a name counts

  bool operator==(const HTTPRequestHead &) const = default;

  // Parses the bytes of a complete head, with or without the final blank line. Bytes that are not UTF-8 are
  // read as ISO Latin-1. Lines end with CRLF, or with LF in a head that has no CRLF at all. Unknown methods,
  // a missing Host and unusual paths are accepted here.
  [[nodiscard]] static std::expected<HTTPRequestHead, HTTPParseError> parse(std::string_view bytes);

  // Returns the value of a header; the case of the name does not matter.
  [[nodiscard]] std::optional<std::string> header(std::string_view name) const;
  // Returns the declared body length, which may be negative, or nullopt if it is absent, not a decimal number
  // or does not fit into 64 bits.
  [[nodiscard]] std::optional<std::int64_t> contentLength() const;
  // Returns the media type without its parameters, in lower case.
  [[nodiscard]] std::optional<std::string> contentType() const;
  // Returns whether the transfer encoding contains "chunked".
  [[nodiscard]] bool isChunked() const;
  [[nodiscard]] bool expectsContinue() const;
};

} // namespace fennick
