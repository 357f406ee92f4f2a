#pragma once

#include <filesystem>

// The user's standard directories (XDG base and user directories). None is created here. Main thread.
namespace fennick {

// Returns the user's pictures folder, "~/Pictures" in the user's language, or "Pictures" in the home
// directory if none is configured.
[[nodiscard]] std::filesystem::path picturesDirectory();
[[nodiscard]] std::filesystem::path configurationDirectory(); // for this program: "~/.config/tevrin"
[[nodiscard]] std::filesystem::path cacheDirectory();         // for this program: "~/.cache/tevrin"

// The folder of the running program, and its shared-data folder: "<prefix>/share/tevrin" for "<prefix>/bin".
[[nodiscard]] std::filesystem::path programDirectory();
[[nodiscard]] std::filesystem::path programDataDirectory();

} // namespace fennick
