#pragma once

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>

namespace fennick {

// Returns the core's resource folder: in the program's shared-data folder, or else beside the program. Ends
// the program with a message if it is in neither, which is an error of the installation. Any thread.
[[nodiscard]] const std::filesystem::path &resourceBundle();

// The page that a phone opens after scanning the code. The template is read on first use and kept. If it
// cannot be read, a fallback page replaces it for the rest of the run. Any thread.
class PhonePage {
public:
  explicit PhonePage(std::filesystem::path bundle) : bundle_(std::move(bundle)) {}

  // Replaces every "__MAX_BYTES__" and then every "__NONCE__" in the template.
  [[nodiscard]] std::string render(std::int64_t maxBytes, const std::string &nonce) const;
  [[nodiscard]] const std::string &html() const;

private:
  std::filesystem::path bundle_;
  mutable std::once_flag loaded_;
  mutable std::string template_;
};

// Returns a new nonce: 16 bytes of the secure random source in Base64.
[[nodiscard]] std::string newNonce();

} // namespace fennick
