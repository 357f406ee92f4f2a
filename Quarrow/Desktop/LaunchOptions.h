#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quarrow {

// The command line of the program with windows. Any thread.
struct LaunchOptions {
  std::optional<std::filesystem::path> stateDirectory; // absolute
  bool loginItem = false;                              // the session starts it at login
  bool selfTest = false;
  bool showVersion = false;
  bool showHelp = false;
  std::vector<std::string> windows; // "--show-settings", "--show-panel", in the order given

  // Parses the arguments after the program's name. The error is a sentence for standard error.
  [[nodiscard]] static std::expected<LaunchOptions, std::string>
  parse(const std::vector<std::string> &arguments);

  [[nodiscard]] static const char *help();
};

// What a second launch forwards to the running program: its arguments, and the launcher's activation token,
// which proves that the user requested a window. Without it desktops do not raise new windows.
struct HandOver {
  std::vector<std::string> windows;
  bool loginItem = false;      // nobody asked for a window
  std::string activationToken; // empty: none

  [[nodiscard]] std::vector<std::string> arguments() const;
  [[nodiscard]] static HandOver parse(const std::vector<std::string> &arguments);
};

} // namespace quarrow
