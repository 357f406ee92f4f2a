#pragma once

#include "FennickCore/HTTP/HTTPRequestHead.h"
#include "FennickCore/HTTP/HTTPResponse.h"

// Compression of answers. Stateless; any thread.
namespace fennick {

// Whether the client takes gzip: "Accept-Encoding" names it, or "*", with a quality above 0.
[[nodiscard]] bool acceptsGzip(const HTTPRequestHead &head);

// The same answer with its text compressed with gzip. The answer stays as it is if there is no memory for
// that.
[[nodiscard]] HTTPResponse gzipped(HTTPResponse response);

} // namespace fennick
