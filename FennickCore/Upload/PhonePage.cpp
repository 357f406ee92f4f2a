#include "FennickCore/Upload/PhonePage.h"

#include "FennickCore/Platform/Files/Directories.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/System/Log.h"
#include "FennickCore/Platform/System/Random.h"
#include "FennickCore/Support/Text.h"

#include <array>
#include <cstdlib>
#include <string_view>

namespace fennick {

namespace {

constexpr std::string_view kBundleName = "FennickCore_FennickCore.bundle";
constexpr std::string_view kFallback = "<!doctype html><p>fennick page missing</p>";

std::filesystem::path findBundle() {
  for (const auto &candidate : {programDataDirectory() / kBundleName, programDirectory() / kBundleName})
    if (fileKind(candidate) == FileKind::directory)
      return candidate;
  logToStandardError();
  log("unable to find bundle named FennickCore_FennickCore");
  std::abort();
}

void replaceAll(std::string &text, std::string_view placeholder, std::string_view value) {
  for (auto at = text.find(placeholder); at != std::string::npos;
       at = text.find(placeholder, at + value.size()))
    text.replace(at, placeholder.size(), value);
}

} // namespace

const std::filesystem::path &resourceBundle() {
  static const std::filesystem::path bundle = findBundle();
  return bundle;
}

std::string PhonePage::render(std::int64_t maxBytes, const std::string &nonce) const {
  std::string page = html();
  replaceAll(page, "__MAX_BYTES__", std::to_string(maxBytes));
  replaceAll(page, "__NONCE__", nonce);
  return page;
}

const std::string &PhonePage::html() const {
  std::call_once(loaded_, [this] {
    const auto content = readFile(bundle_ / "PhonePage.html");
    template_ = content && isValidUTF8(*content) ? *content : std::string(kFallback);
  });
  return template_;
}

std::string newNonce() {
  std::array<std::byte, 16> bytes{};
  fillRandom(bytes);
  return base64(bytes);
}

} // namespace fennick
