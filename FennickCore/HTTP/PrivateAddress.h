#pragma once

#include <string_view>

namespace fennick {

// Returns whether the text of a peer's address is private or local: 10/8, 127/8, 169.254/16, 172.16/12,
// 192.168/16, also mapped into IPv6; "::1", link-local (fe80::/10) and unique local (fc00::/7). A zone after
// "%" is ignored. Text that is not an address counts as public.
[[nodiscard]] bool isPrivateAddress(std::string_view remote);

} // namespace fennick
