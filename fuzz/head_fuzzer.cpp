// Parses a request head, makes all queries of a connection, and echoes it.
#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"
#include "FennickCore/Support/Text.h"
#include "fuzz/Property.h"

#include <algorithm>
#include <string>

using namespace fennick;
using fennick::fuzz::require;

namespace {

std::ptrdiff_t linesOf(const std::string &text) { return std::ranges::count(text, '\n'); }

// Every value must leave in one line of its header.
void requireOneLineEach(const HTTPRequestHead &head) {
  HTTPResponse response = HTTPResponse::text(200, "");
  const std::ptrdiff_t alone = linesOf(response.serialise(true));
  for (const auto &[name, value] : head.headers)
    if (name != "cache-control")
      response.headers.emplace_back(name, value);
  for (const auto &[name, value] : head.query)
    response.headers.emplace_back("X-" + name, value);
  const auto echoed = std::ssize(response.headers) - 1;
  require(linesOf(response.serialise(true)) == alone + echoed);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string bytes(fuzz::textOf(data, size));
  const auto head = HTTPRequestHead::parse(bytes);
  if (!head)
    return 0;
  require(!head->method.empty() && !head->headers.contains("") && !head->query.contains(""));
  for (const auto &[name, value] : head->headers)
    require(isValidUTF8(name) && isValidUTF8(value) && trimmed(value) == value &&
            head->header(name) == value);
  (void)head->contentLength();
  (void)head->contentType();
  (void)head->isChunked();
  (void)head->expectsContinue();
  requireOneLineEach(*head);
  // The final blank line must make no difference.
  if (bytes.find("\r\n") != std::string::npos)
    require(HTTPRequestHead::parse(bytes + "\r\n\r\n") == head);
  return 0;
}
