#include "Quarrow/App/PhoneAddress.h"

#include <fmt/format.h>

#include <algorithm>

namespace quarrow {

std::optional<fennick::LANAddress> preferredAddress(std::span<const fennick::LANAddress> addresses,
                                                    const std::optional<std::string> &preferredInterface) {
  if (addresses.empty())
    return std::nullopt;
  const auto preferred = std::ranges::find_if(
      addresses, [&](const auto &address) { return preferredInterface == address.interface; });
  return preferred == addresses.end() ? addresses.front() : *preferred;
}

std::optional<std::string> baseURL(const std::optional<fennick::LANAddress> &address,
                                   std::optional<std::uint16_t> port) {
  if (!address || !port)
    return std::nullopt;
  return fmt::format("http://{}:{}", address->address, *port);
}

std::string phoneURL(const std::string &baseURL, const std::string &accessKey) {
  return baseURL + "/?k=" + accessKey;
}

std::string shortcutUploadURL(const std::string &baseURL, const std::string &accessKey) {
  return baseURL + "/upload?k=" + accessKey;
}

} // namespace quarrow
