#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace fennick::test {

// Returns the text that an independent program (zbarimg) reads from a picture of `side` × `side` pixels, of
// which `isDark(x, y)` are black; empty if it finds no code or is not installed.
[[nodiscard]] std::string readQRCode(std::int64_t side,
                                     const std::function<bool(std::int64_t x, std::int64_t y)> &isDark);

} // namespace fennick::test
