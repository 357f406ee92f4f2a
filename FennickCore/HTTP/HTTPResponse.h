#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fennick {

// The one record by which every answer leaves the server: built by a constructor below, serialised once by
// the connection, which then closes. A value; any thread.
struct HTTPResponse {
  std::int64_t status = 200;
  std::vector<std::pair<std::string, std::string>> headers; // written in this order, names as given
  std::string body;
  // When set, these bytes are the body, shared with whoever keeps them, and `body` is ignored.
  std::shared_ptr<const std::string> sharedBody;
  std::optional<std::filesystem::path>
      bodyFile;                    // when set, this file's bytes are the body and the two above are ignored
  std::int64_t bodyFileLength = 0; // announced length of `bodyFile`, fixed when this was built

  [[nodiscard]] static HTTPResponse text(std::int64_t status, std::string_view text);
  [[nodiscard]] static HTTPResponse notFound() { return text(404, "not found"); }
  // Compact JSON, keys in the order given. A value that cannot be written as JSON is sent as "{}".
  [[nodiscard]] static HTTPResponse json(const nlohmann::ordered_json &value);
  [[nodiscard]] static HTTPResponse html(std::string_view html);
  // A page with scripts and styles: only those that carry `nonce` run, nothing is loaded from elsewhere, no
  // other site may frame it.
  [[nodiscard]] static HTTPResponse page(std::string_view html, std::string_view nonce);
  // A download of a regular file as an attachment named `downloadName`, or the file's own name. Nothing when
  // the file's size cannot be read.
  [[nodiscard]] static std::optional<HTTPResponse>
  file(const std::filesystem::path &location, std::string_view contentType,
       const std::optional<std::string> &downloadName = std::nullopt);

  // The bytes to send before a file or a shared body: status line, headers, length, "Connection: close" and,
  // unless `headOnly` or the body is one of these, the body. Control characters in a header are written as
  // spaces, so that no name or value can begin a line of its own.
  [[nodiscard]] std::string serialise(bool headOnly) const;
};

// Sent before the body of an upload whose client waits for it ("Expect: 100-continue").
inline constexpr std::string_view kContinueResponse = "HTTP/1.1 100 Continue\r\n\r\n";

} // namespace fennick
