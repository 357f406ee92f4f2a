#pragma once

#include <expected>
#include <string>

namespace fennick::picture {

// Makes the picture libraries ready, so that nothing has to be loaded any more: only the loaders of formats
// we take are left, and each has handled a small picture of our own. Once, before the process is locked down.
// The error says what is missing.
[[nodiscard]] std::expected<void, std::string> prepareCodecs();

} // namespace fennick::picture
