#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>

namespace fennick {

// The folder of resources that comes with the core: looked for in the program's shared-data folder, then
// beside the program. Ends the program with a message when it is in neither: a packaging fault. Any thread.
[[nodiscard]] const std::filesystem::path &resourceBundle();

// The page that a phone opens after scanning the code. The template is read on first use and kept; a template
// that cannot be read is replaced by a fallback page for good. Any thread.
class PhonePage {
public:
  explicit PhonePage(std::filesystem::path bundle) : bundle_(std::move(bundle)) {}

  // The template with every "__MAX_BYTES__" and then every "__NONCE__" replaced.
  [[nodiscard]] std::string render(std::int64_t maxBytes, const std::string &nonce) const;
  [[nodiscard]] const std::string &html() const;

private:
  std::filesystem::path bundle_;
  mutable std::once_flag loaded_;
  mutable std::string template_;
};

// A fresh nonce: 16 bytes of the secure random source in Base64.
[[nodiscard]] std::string newNonce();

} // namespace fennick
