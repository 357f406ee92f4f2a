#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace quarrow {

// Whether the session starts the program when the user logs in: an entry "tevrin.desktop" in the desktop's
// autostart folder, which passes "--login-item". The entry on the disk is the only state, so that what the
// desktop's own settings change in it holds here too: an entry that they mark as hidden or switched off
// starts nothing. Main thread.
class LoginItem {
public:
  // `folder` is the autostart folder, which need not exist yet; `program` the full path of what is started.
  LoginItem(const std::filesystem::path &folder, std::filesystem::path program);

  // Read anew each time.
  [[nodiscard]] bool isEnabled() const;
  // Writes the entry, in place of whatever stood there, or takes it away; one that starts nothing stays as
  // the user left it. On failure nothing has changed, and the error is a message for the user.
  [[nodiscard]] std::expected<void, std::string> setEnabled(bool enabled);

private:
  [[nodiscard]] std::expected<void, std::string> write() const;

  const std::filesystem::path entry_;
  const std::filesystem::path program_;
};

// The person's autostart folder: "~/.config/autostart", or where XDG_CONFIG_HOME says.
[[nodiscard]] std::filesystem::path autostartFolder();

} // namespace quarrow
