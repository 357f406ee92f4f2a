#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarrow {

// Draws the QR code of `text` with half-block characters, two modules per character, one row per line, with
// the quiet zone that readers need. Escape sequences set black on white, so that it looks the same on dark
// and light terminals; with `Colour::none` the terminal's text colour draws the dark modules. Returns nullopt
// if the text is too long for a code. Any thread.
enum class Colour { explicitBlackOnWhite, none };
[[nodiscard]] std::optional<std::string> terminalQR(std::string_view text, Colour colour);

} // namespace quarrow
