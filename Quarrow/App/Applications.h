#pragma once

#include <expected>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

// Starts the desktop's other programs, in a session of their own, so that Ctrl-C in our terminal does not
// reach them, and without access to our output. The error is a message that says why nothing was started;
// whether the program could read the file is unknown. Main thread.
namespace quarrow::applications {

// An application that users can choose to open files with.
struct InstalledApplication {
  std::filesystem::path entry; // its desktop entry
  std::string name;            // in the user's language
  std::string icon;            // an absolute path, or a name in the icon themes; empty: none
  bool isMadeForIt = false;    // says of itself that it opens such files

  bool operator==(const InstalledApplication &) const = default;
};

// Returns the applications that open files, without hidden ones and this program: first the default one for
// files with the name of `file`, then the others for this kind of file, then all others, each group by name.
// `file` need not exist. Reads the desktop entries again if they have changed; any thread.
[[nodiscard]] std::vector<InstalledApplication> installedApplications(const std::filesystem::path &file);

// Opens the files with the application that the desktop entry `entry` (a .desktop file) describes.
[[nodiscard]] std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                                        std::span<const std::filesystem::path> files);
[[nodiscard]] inline std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                                               const std::filesystem::path &file) {
  return openWith(entry, std::span(&file, 1));
}

// Opens `file` with the default application for its kind, which is determined from its name.
[[nodiscard]] std::expected<void, std::string> openFile(const std::filesystem::path &file);
// Opens several files, those of one kind together. The error is that of one kind; the other files were
// opened.
[[nodiscard]] std::expected<void, std::string> openFiles(std::span<const std::filesystem::path> files);

// Shows `folder` in the desktop's file manager.
[[nodiscard]] std::expected<void, std::string> openFolder(const std::filesystem::path &folder);

} // namespace quarrow::applications
