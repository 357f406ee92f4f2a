#pragma once

#include "FennickCore/Network/LANAddress.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

// The addresses at which phones reach this computer. Pure functions; any thread.
namespace quarrow {

// Returns the first address of the interface that the user prefers, or the first of all if there is no such
// preference or that interface is down. Returns nullopt if there are no addresses.
[[nodiscard]] std::optional<fennick::LANAddress>
preferredAddress(std::span<const fennick::LANAddress> addresses,
                 const std::optional<std::string> &preferredInterface);

// Returns "http://192.168.1.20:8000", or nullopt if there is no address or no server listens.
[[nodiscard]] std::optional<std::string> baseURL(const std::optional<fennick::LANAddress> &address,
                                                 std::optional<std::uint16_t> port);

// Returns the URL in the QR code: the page.
[[nodiscard]] std::string phoneURL(const std::string &baseURL, const std::string &accessKey);
// Returns the URL to which a phone's shortcut, or curl, sends a photo.
[[nodiscard]] std::string shortcutUploadURL(const std::string &baseURL, const std::string &accessKey);

} // namespace quarrow
