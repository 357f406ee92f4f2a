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

// A response. Made by one of the functions below and serialised once by the connection, which then closes. A
// value; any thread.
struct HTTPResponse {
  std::int64_t status = 200;
  std::vector<std::pair<std::string, std::string>> headers; // sent in this order, names as given
  std::string body;
  // If set, these shared bytes are the body and `body` is ignored.
  std::shared_ptr<const std::string> sharedBody;
  std::optional<std::filesystem::path>
      bodyFile;                    // when set, this file's bytes are the body and the two above are ignored
  std::int64_t bodyFileLength = 0; // length of `bodyFile` when this was made

  [[nodiscard]] static HTTPResponse text(std::int64_t status, std::string_view text);
  [[nodiscard]] static HTTPResponse notFound() { return text(404, "not found"); }
  // Makes compact JSON with the keys in the order given. A value that cannot be written as JSON is sent as
  // "{}".
  [[nodiscard]] static HTTPResponse json(const nlohmann::ordered_json &value);
  [[nodiscard]] static HTTPResponse html(std::string_view html);
  // Makes a page: only scripts and styles with `nonce` are active, nothing is loaded from elsewhere, and no
  // other site may frame it.
  [[nodiscard]] static HTTPResponse page(std::string_view html, std::string_view nonce);
  // Makes a download of a regular file as an attachment named `downloadName`, or the file's own name. Returns
  // nullopt if the file's size cannot be read.
  [[nodiscard]] static std::optional<HTTPResponse>
  file(const std::filesystem::path &location, std::string_view contentType,
       const std::optional<std::string> &downloadName = std::nullopt);

  // Returns the bytes to send before a file or a shared body: status line, headers, length, "Connection:
  // close" and, unless `headOnly` or the body is one of these, the body. Control characters in a header
  // become spaces, so that no name or value can begin a new line.
  [[nodiscard]] std::string serialise(bool headOnly) const;
};

// Sent before the body of an upload if the client waits for it ("Expect: 100-continue").
inline constexpr std::string_view kContinueResponse = "HTTP/1.1 100 Continue\r\n\r\n";

} // namespace fennick
