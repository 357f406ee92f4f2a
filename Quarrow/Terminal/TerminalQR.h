#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quarrow {

// The QR code of `text` in half-block characters, two modules a character, one line of text a row, with the
// quiet zone that readers need. Black on white is set by escape sequences, so that it looks the same on a
// dark and on a light terminal; with `Colour::none` the terminal's own text colour draws the dark modules.
// Returns nullopt if the text is too long for a code. Any thread.
enum class Colour { explicitBlackOnWhite, none };
[[nodiscard]] std::optional<std::string> terminalQR(std::string_view text, Colour colour);

} // namespace quarrow
