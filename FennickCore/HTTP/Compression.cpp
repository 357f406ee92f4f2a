#include "FennickCore/HTTP/Compression.h"

#include "FennickCore/Support/Text.h"

#include <zlib.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>

namespace fennick {

namespace {

constexpr int kLevel = 6;            // zlib's own choice between size and time
constexpr int kGzipWindow = 15 + 16; // the largest window, in the format of gzip

// Returns whether the parameters of an element of the header contain "q=0".
bool isRefused(std::string_view parameters) {
  const std::size_t at = parameters.find("q=");
  return at != std::string_view::npos &&
         parameters.substr(at + 2).find_first_not_of("0. \t") == std::string_view::npos;
}

} // namespace

bool acceptsGzip(const HTTPRequestHead &head) {
  const auto accepted = head.header("accept-encoding");
  if (!accepted)
    return false;
  std::optional<bool> gzip;
  std::optional<bool> any;
  for (const auto piece : std::views::split(*accepted, ',')) {
    const std::string element = lowerCased(std::string_view(piece.begin(), piece.end()));
    const std::size_t end = std::min(element.find(';'), element.size());
    const auto name = trimmed(std::string_view(element).substr(0, end));
    const bool isTaken = !isRefused(std::string_view(element).substr(end));
    if (name == "gzip")
      gzip = isTaken;
    else if (name == "*")
      any = isTaken;
  }
  return gzip.value_or(any.value_or(false));
}

HTTPResponse gzipped(HTTPResponse response) {
  z_stream stream{};
  if (::deflateInit2(&stream, kLevel, Z_DEFLATED, kGzipWindow, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY) != Z_OK)
    return response;
  const std::unique_ptr<z_stream, decltype(&::deflateEnd)> end(&stream, &::deflateEnd);
  std::string compressed(::deflateBound(&stream, response.body.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef *>(response.body.data());
  stream.avail_in = static_cast<uInt>(response.body.size());
  stream.next_out = reinterpret_cast<Bytef *>(compressed.data());
  stream.avail_out = static_cast<uInt>(compressed.size());
  if (::deflate(&stream, Z_FINISH) != Z_STREAM_END)
    return response;
  compressed.resize(stream.total_out);
  response.body = std::move(compressed);
  response.headers.emplace_back("Content-Encoding", "gzip");
  response.headers.emplace_back("Vary", "Accept-Encoding");
  return response;
}

} // namespace fennick
