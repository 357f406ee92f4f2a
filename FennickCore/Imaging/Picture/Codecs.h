#pragma once

#include <expected>
#include <string>

namespace fennick::picture {

// Prepares the picture libraries, so that nothing has to be loaded later: only the loaders of accepted
// formats remain, and each has handled a small picture of ours. Call it once, before the process is locked
// down. The error says what is missing.
[[nodiscard]] std::expected<void, std::string> prepareCodecs();

} // namespace fennick::picture
