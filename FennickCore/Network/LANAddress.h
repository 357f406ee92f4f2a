#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace fennick {

// An IPv4 address under which phones on the same network may reach this computer.
struct LANAddress {
  enum class Kind { wifi, wired, hotspot, other };

  std::string interface; // "wlan0"
  std::string address;   // dotted decimal
  Kind kind = Kind::other;
  bool operator==(const LANAddress &) const = default;
};

// "wifi", "wired", "hotspot", "other".
[[nodiscard]] std::string_view rawValue(LANAddress::Kind kind);

} // namespace fennick

template <>
struct std::hash<fennick::LANAddress> {
  std::size_t operator()(const fennick::LANAddress &address) const noexcept;
};
