#pragma once

#include <expected>
#include <filesystem>
#include <string>

// The desktop's other programs. They are started in a session of their own, so that Ctrl-C in our terminal is
// not theirs, and write nothing onto ours. The error says in words why nothing was started; what a program
// makes of the file is not known here. Main thread.
namespace fennick {

// Opens `file` with the application that the desktop entry `entry` (a .desktop file) describes.
[[nodiscard]] std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                                        const std::filesystem::path &file);

// Opens `file` with the application that people use for files of its kind, which its name tells.
[[nodiscard]] std::expected<void, std::string> openFile(const std::filesystem::path &file);

// Shows `folder` in the desktop's file manager.
[[nodiscard]] std::expected<void, std::string> openFolder(const std::filesystem::path &folder);

} // namespace fennick
