#include "Quarrow/Desktop/LoginItem.h"

#include "FennickCore/Platform/Files/Directories.h"
#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Support/Text.h"

#include <fmt/format.h>

#include <sstream>
#include <string_view>
#include <utility>

namespace quarrow {

namespace {

constexpr std::string_view kGroup = "[Desktop Entry]";

// Quotes `text` as one argument of an Exec line. The line is parsed twice: as a string, in which a backslash
// begins an escape, and as a command, in which these four characters are escaped inside quotes.
std::string execArgument(std::string_view text) {
  std::string argument = "\"";
  for (const char c : text) {
    if (c == '\\')
      argument += R"(\\\\)";
    else if (c == '"' || c == '`' || c == '$')
      argument.append(R"(\\)").push_back(c);
    else if (c == '%')
      argument += "%%";
    else if (c == '\n')
      argument += "\\n";
    else
      argument += c;
  }
  return argument + "\"";
}

// Returns the value of `key` in the entry's main group; empty if it is missing.
std::string_view valueOf(std::string_view entry, std::string_view key) {
  bool inside = false;
  while (!entry.empty()) {
    const auto end = entry.find('\n');
    const std::string_view line = fennick::trimmed(entry.substr(0, end));
    entry.remove_prefix(end == std::string_view::npos ? entry.size() : end + 1);
    if (line.starts_with('['))
      inside = line == kGroup;
    const auto equals = line.find('=');
    if (inside && equals != std::string_view::npos && fennick::trimmed(line.substr(0, equals)) == key)
      return fennick::trimmed(line.substr(equals + 1));
  }
  return {};
}

} // namespace

LoginItem::LoginItem(const std::filesystem::path &folder, std::filesystem::path program)
    : entry_(folder / "tevrin.desktop"), program_(std::move(program)) {}

bool LoginItem::isEnabled() const {
  const auto entry = fennick::readFile(entry_);
  return entry && !valueOf(*entry, "Exec").empty() && valueOf(*entry, "Hidden") != "true" &&
         valueOf(*entry, "X-GNOME-Autostart-enabled") != "false";
}

std::expected<void, std::string> LoginItem::setEnabled(bool enabled) {
  if (enabled)
    return write();
  if (!isEnabled())
    return {};
  if (const auto removed = fennick::SystemFileSystem().remove(entry_); !removed)
    return std::unexpected(removed.error().message());
  return {};
}

std::expected<void, std::string> LoginItem::write() const {
  const std::string entry =
      fmt::format("{}\nType=Application\nName=Tevrin\nComment=从手机接收照片\nExec={} --login-item\n"
                  "Icon=tevrin\nTerminal=false\n",
                  kGroup, execArgument(program_.native()));
  if (const auto made = fennick::SystemFileSystem().createDirectories(entry_.parent_path()); !made)
    return std::unexpected(made.error().message());
  if (const auto written = fennick::replaceFile(entry_, entry); !written)
    return std::unexpected(written.error().message());
  return {};
}

std::filesystem::path autostartFolder() {
  return fennick::configurationDirectory().parent_path() / "autostart";
}

} // namespace quarrow
