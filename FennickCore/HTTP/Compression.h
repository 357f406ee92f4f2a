#pragma once

#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"

// Compression of responses. Stateless; any thread.
namespace fennick {

// Returns whether the client accepts gzip: "Accept-Encoding" contains it, or "*", with a quality above 0.
[[nodiscard]] bool acceptsGzip(const HTTPRequestHead &head);

// Returns the response with its text compressed with gzip, or unchanged if there is no memory for that.
[[nodiscard]] HTTPResponse gzipped(HTTPResponse response);

} // namespace fennick
