#pragma once

#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quarrow {

// The command line of the terminal program.
struct CommandLine {
  std::optional<std::filesystem::path> folder; // absolute; the save folder for this run
  std::optional<std::uint16_t> port;           // the preferred port for this run
  std::optional<std::filesystem::path> stateDirectory;
  std::vector<std::string> overrides; // "KEY=VALUE", in the order given
  bool json = false;
  bool qr = true;
  bool showVersion = false;
  std::optional<std::string> help; // the text to show instead of running

  // Parses the arguments after the program's name. The error is a sentence for standard error. Main thread.
  [[nodiscard]] static std::expected<CommandLine, std::string>
  parse(const std::vector<std::string> &arguments);
};

} // namespace quarrow
