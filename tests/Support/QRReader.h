#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace fennick::test {

// What an independent program (zbarimg) reads from a picture of `side` × `side` pixels, of which `isDark(x,
// y)` are black; "" when it finds no code in it, or is not installed.
[[nodiscard]] std::string readQRCode(std::int64_t side,
                                     const std::function<bool(std::int64_t x, std::int64_t y)> &isDark);

} // namespace fennick::test
