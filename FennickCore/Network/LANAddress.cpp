#include "FennickCore/Network/LANAddress.h"

namespace fennick {

std::string_view rawValue(LANAddress::Kind kind) {
  switch (kind) {
  case LANAddress::Kind::wifi:
    return "wifi";
  case LANAddress::Kind::wired:
    return "wired";
  case LANAddress::Kind::hotspot:
    return "hotspot";
  case LANAddress::Kind::other:
    return "other";
  }
  return {};
}

} // namespace fennick

// Equal addresses almost always have equal kinds, so the kind adds nothing to the hash.
std::size_t std::hash<fennick::LANAddress>::operator()(const fennick::LANAddress &address) const noexcept {
  const std::hash<std::string> textHash;
  return textHash(address.interface) * 31 + textHash(address.address);
}
