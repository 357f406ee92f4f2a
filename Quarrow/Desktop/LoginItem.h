#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace quarrow {

// Starts the program at login with an entry "tevrin.desktop" in the desktop's autostart folder, which passes
// "--login-item". The entry on the disk is the only state, so that changes in the desktop's own settings
// apply: an entry that they hide or disable counts as off. Main thread.
class LoginItem {
public:
  // `folder` is the autostart folder, which need not exist; `program` the full path of the program.
  LoginItem(const std::filesystem::path &folder, std::filesystem::path program);

  // Reads the entry each time.
  [[nodiscard]] bool isEnabled() const;
  // Writes the entry, replacing any other, or removes it; a disabled entry stays as the user left it. On
  // failure nothing has changed, and the error is a message for the user.
  [[nodiscard]] std::expected<void, std::string> setEnabled(bool enabled);

private:
  [[nodiscard]] std::expected<void, std::string> write() const;

  const std::filesystem::path entry_;
  const std::filesystem::path program_;
};

// Returns the user's autostart folder: "autostart" in XDG_CONFIG_HOME or "~/.config".
[[nodiscard]] std::filesystem::path autostartFolder();

} // namespace quarrow
