#pragma once

#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

// The desktop's other programs. They are started in a session of their own, so that Ctrl-C in our terminal is
// not theirs, and write nothing onto ours. The error says in words why nothing was started; what a program
// makes of the file is not known here. Main thread.
namespace quarrow::applications {

// One that people can choose to open files with.
struct InstalledApplication {
  std::filesystem::path entry; // its desktop entry
  std::string name;            // in the person's language
  std::string icon;            // an absolute path, or a name in the icon themes; empty: none
  bool isMadeForIt = false;    // says of itself that it opens such files

  bool operator==(const InstalledApplication &) const = default;
};

// The applications that take files, hidden ones and ourselves left out: first the one that people use for
// files of the kind that the name of `file` tells, then the others that are made for them, then all others,
// each group in the order of the names. `file` need not exist. Looks through the desktop entries when
// something about them has changed; any thread.
[[nodiscard]] std::vector<InstalledApplication> installedApplications(const std::filesystem::path &file);

// Opens the files with the application that the desktop entry `entry` (a .desktop file) describes.
[[nodiscard]] std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                                        std::span<const std::filesystem::path> files);
[[nodiscard]] inline std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                                               const std::filesystem::path &file) {
  return openWith(entry, std::span(&file, 1));
}

// Opens `file` with the application that people use for files of its kind, which its name tells.
[[nodiscard]] std::expected<void, std::string> openFile(const std::filesystem::path &file);
// The same for several: those of a kind together. The error is that of one kind; the others are open.
[[nodiscard]] std::expected<void, std::string> openFiles(std::span<const std::filesystem::path> files);

// Shows `folder` in the desktop's file manager.
[[nodiscard]] std::expected<void, std::string> openFolder(const std::filesystem::path &folder);

} // namespace quarrow::applications
