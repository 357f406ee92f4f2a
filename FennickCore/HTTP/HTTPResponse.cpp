#include "FennickCore/HTTP/HTTPResponse.h"

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <glib.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace fennick {

namespace {

std::string_view reasonPhrase(std::int64_t status) {
  switch (status) {
  case 100:
    return "Continue";
  case 200:
    return "OK";
  case 400:
    return "Bad Request";
  case 403:
    return "Forbidden";
  case 404:
    return "Not Found";
  case 405:
    return "Method Not Allowed";
  case 408:
    return "Request Timeout";
  case 411:
    return "Length Required";
  case 413:
    return "Payload Too Large";
  case 429:
    return "Too Many Requests";
  case 431:
    return "Request Header Fields Too Large";
  case 500:
    return "Internal Server Error";
  default:
    return "Unknown";
  }
}

std::string contentSecurityPolicy(std::string_view nonce) {
  return fmt::format(
      "default-src 'none'; script-src 'nonce-{0}'; style-src 'nonce-{0}'; img-src 'self' blob:; "
      "connect-src 'self'; media-src 'self' blob:; base-uri 'none'; form-action 'none'; "
      "frame-ancestors 'none'",
      nonce);
}

bool isLetterMarkOrDigit(gunichar character) {
  return g_unichar_isalpha(character) != FALSE || g_unichar_ismark(character) != FALSE ||
         g_unichar_isdigit(character) != FALSE;
}

// Keeps letters, marks and digits of every script and replaces everything else by %XX of its UTF-8 bytes.
// Returns "file" for a name that is not UTF-8.
std::string encodedDownloadName(const std::string &name) {
  if (!isValidUTF8(name))
    return "file";
  std::string encoded;
  const char *next = nullptr;
  for (const char *at = name.c_str(); at < name.c_str() + name.size(); at = next) {
    next = g_utf8_next_char(at);
    if (isLetterMarkOrDigit(g_utf8_get_char(at))) {
      encoded.append(at, next);
    } else {
      for (const char *byte = at; byte < next; ++byte)
        encoded += fmt::format("%{:02X}", static_cast<unsigned char>(*byte));
    }
  }
  return encoded;
}

void appendHeader(std::string &out, std::string_view name, std::string_view value) {
  out += withoutControls(name);
  out += ": ";
  out += withoutControls(value);
  out += "\r\n";
}

} // namespace

HTTPResponse HTTPResponse::text(std::int64_t status, std::string_view text) {
  HTTPResponse response;
  response.status = status;
  response.headers = {{"Content-Type", "text/plain; charset=utf-8"}};
  response.body = text;
  return response;
}

HTTPResponse HTTPResponse::json(const nlohmann::ordered_json &value) {
  HTTPResponse response;
  response.headers = {{"Content-Type", "application/json; charset=utf-8"},
                      {"X-Content-Type-Options", "nosniff"}};
  try {
    response.body = value.dump();
  } catch (const nlohmann::json::exception &) {
    response.body = "{}"; // text that is not UTF-8
  }
  return response;
}

HTTPResponse HTTPResponse::html(std::string_view html) {
  HTTPResponse response;
  response.headers = {{"Content-Type", "text/html; charset=utf-8"}};
  response.body = html;
  return response;
}

HTTPResponse HTTPResponse::page(std::string_view html, std::string_view nonce) {
  HTTPResponse response = HTTPResponse::html(html);
  response.headers.emplace_back("Content-Security-Policy", contentSecurityPolicy(nonce));
  response.headers.emplace_back("X-Content-Type-Options", "nosniff");
  response.headers.emplace_back("X-Frame-Options", "DENY");
  response.headers.emplace_back("Referrer-Policy", "no-referrer");
  return response;
}

std::optional<HTTPResponse> HTTPResponse::file(const std::filesystem::path &location,
                                               std::string_view contentType,
                                               const std::optional<std::string> &downloadName) {
  const auto size = fileSize(location);
  if (!size)
    return std::nullopt;
  const std::string name = downloadName.value_or(location.filename().string());
  HTTPResponse response;
  response.headers = {{"Content-Type", std::string(contentType)},
                      {"X-Content-Type-Options", "nosniff"},
                      {"Content-Disposition", "attachment; filename*=UTF-8''" + encodedDownloadName(name)}};
  response.bodyFile = location;
  response.bodyFileLength = *size;
  return response;
}

std::string HTTPResponse::serialise(bool headOnly) const {
  std::string out = fmt::format("HTTP/1.1 {} {}\r\n", status, reasonPhrase(status));
  for (const auto &[name, value] : headers)
    appendHeader(out, name, value);
  const std::int64_t length = bodyFile ? bodyFileLength : std::ssize(sharedBody ? *sharedBody : body);
  appendHeader(out, "Content-Length", std::to_string(length));
  const auto isCacheControl = [](const auto &header) { return lowerCased(header.first) == "cache-control"; };
  if (std::ranges::none_of(headers, isCacheControl))
    appendHeader(out, "Cache-Control", "no-store");
  out += "Connection: close\r\n\r\n";
  if (!headOnly && !bodyFile && !sharedBody)
    out += body;
  return out;
}

} // namespace fennick
