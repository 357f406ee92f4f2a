#pragma once

#include <filesystem>

// The user's standard directories (XDG base and user directories). None is created here. Main thread.
namespace fennick {

// "~/Pictures" in the user's language; "Pictures" in the home directory when the user has none set.
[[nodiscard]] std::filesystem::path picturesDirectory();
[[nodiscard]] std::filesystem::path configurationDirectory(); // for this program: "~/.config/tevrin"
[[nodiscard]] std::filesystem::path cacheDirectory();         // for this program: "~/.cache/tevrin"

// The folder that holds the running program, and the program's shared-data folder beside it
// ("<prefix>/share/tevrin" for "<prefix>/bin").
[[nodiscard]] std::filesystem::path programDirectory();
[[nodiscard]] std::filesystem::path programDataDirectory();

} // namespace fennick
