#include "FennickCore/Network/FirewallFinding.h"

namespace fennick {

std::string_view rawValue(FirewallFinding::Kind kind) {
  switch (kind) {
  case FirewallFinding::Kind::none:
    return "none";
  case FirewallFinding::Kind::ufw:
    return "ufw";
  case FirewallFinding::Kind::firewalld:
    return "firewalld";
  }
  return {};
}

std::string_view rawValue(FirewallFinding::Port port) {
  switch (port) {
  case FirewallFinding::Port::open:
    return "open";
  case FirewallFinding::Port::closed:
    return "closed";
  case FirewallFinding::Port::unknown:
    return "unknown";
  }
  return {};
}

} // namespace fennick
