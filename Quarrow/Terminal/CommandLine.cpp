#include "Quarrow/Terminal/CommandLine.h"

#include "FennickCore/Support/Text.h"

#include <fmt/format.h>
#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>
#include <system_error>
#include <tuple>
#include <utility>

namespace quarrow {

namespace {

constexpr const char *kSummary =
    "手机扫码，照片和视频直接存进这台电脑的文件夹。\n"
    "Phones on the same network scan the code and drop photos and videos into a folder of this computer.";

constexpr const char *kDescription =
    "KEY 是设置项的路径，VALUE 是 JSON 或普通文本，例如：\n"
    "KEY is the path of a setting, VALUE is JSON or plain text, for example:\n"
    "  --set dateSubfolders=true --set maxUploadBytes=1073741824 --set naming=prefixSequence\n"
    "  --set naming.prefixSequence.prefix=Party --set folderLimit=500\n"
    "  --set galleryEnabled=true --set imaging.maxPixels=2048 --set imaging.stripLocation=true\n\n"
    "Ctrl-C 结束接收 / ends the receiver.";

using Strings = std::unique_ptr<char *, decltype(&g_strfreev)>;
using Text = std::unique_ptr<char, decltype(&g_free)>;

// What GLib writes the options into; filenames and lists have to be freed.
struct RawOptions {
  char *folder = nullptr;
  char *stateDirectory = nullptr;
  char *port = nullptr;
  char **overrides = nullptr;
  gboolean json = FALSE;
  gboolean noQR = FALSE;
  gboolean version = FALSE;
  gboolean help = FALSE;

  RawOptions() = default;
  RawOptions(const RawOptions &) = delete;
  RawOptions &operator=(const RawOptions &) = delete;
  ~RawOptions() {
    g_free(folder);
    g_free(stateDirectory);
    g_free(port);
    g_strfreev(overrides);
  }
};

// All texts are read as file names, byte by byte, independently of the terminal's character set.
std::array<GOptionEntry, 9> optionEntries(RawOptions &raw) {
  const auto entry = [](const char *name, char letter, GOptionArg kind, void *value, const char *what,
                        const char *valueName) {
    return GOptionEntry{name, letter, 0, kind, value, what, valueName};
  };
  return {entry("folder", 0, G_OPTION_ARG_FILENAME, &raw.folder,
                "保存目录（仅本次）/ save folder for this run", "DIR"),
          entry("port", 0, G_OPTION_ARG_FILENAME, &raw.port,
                "首选端口，被占用时依次往后试 / preferred port; the next free one is taken", "N"),
          entry("state-dir", 0, G_OPTION_ARG_FILENAME, &raw.stateDirectory,
                "设置、密钥和缓存的目录 / where settings, key and caches live", "DIR"),
          entry("set", 0, G_OPTION_ARG_FILENAME_ARRAY, &raw.overrides,
                "覆盖一项设置（仅本次，可重复）/ override a setting for this run; repeatable", "KEY=VALUE"),
          entry("json", 0, G_OPTION_ARG_NONE, &raw.json,
                "每行输出一个 JSON 对象 / print one JSON object a line", nullptr),
          entry("no-qr", 0, G_OPTION_ARG_NONE, &raw.noQR, "不显示二维码 / do not draw the QR code", nullptr),
          entry("version", 0, G_OPTION_ARG_NONE, &raw.version, "显示版本 / show the version", nullptr),
          entry("help", 'h', G_OPTION_ARG_NONE, &raw.help, "显示帮助 / show this help", nullptr),
          GOptionEntry{}};
}

// Resolves ".." like the file system, following links.
std::expected<std::filesystem::path, std::string> absolute(const char *option, const char *text) {
  const std::filesystem::path given = text;
  std::error_code error;
  auto result = std::filesystem::absolute(given, error);
  if (!error && std::ranges::find(given, "..") != given.end())
    result = std::filesystem::weakly_canonical(result, error);
  if (error || given.empty())
    return std::unexpected(fmt::format("{0} 要一个目录，得到“{1}” / {0} takes a folder, got \"{1}\"", option,
                                       fennick::displayText(text)));
  return result.has_filename() ? result : result.parent_path();
}

std::expected<std::uint16_t, std::string> parsedPort(const char *text) {
  const auto number = fennick::signedDecimal(text);
  if (!number || !std::in_range<std::uint16_t>(*number))
    return std::unexpected(fmt::format("--port 要 0 到 65535 的整数，得到“{0}” / --port takes a whole number "
                                       "from 0 to 65535, got \"{0}\"",
                                       fennick::displayText(text)));
  return static_cast<std::uint16_t>(*number);
}

std::expected<CommandLine, std::string> chosen(const RawOptions &raw) {
  CommandLine result;
  for (const auto &[option, given, chosen] :
       {std::tuple("--folder", raw.folder, &result.folder),
        std::tuple("--state-dir", raw.stateDirectory, &result.stateDirectory)}) {
    if (given == nullptr)
      continue;
    const auto path = absolute(option, given);
    if (!path)
      return std::unexpected(path.error());
    *chosen = *path;
  }
  if (raw.port != nullptr) {
    const auto port = parsedPort(raw.port);
    if (!port)
      return std::unexpected(port.error());
    result.port = *port;
  }
  for (char **override = raw.overrides; override != nullptr && *override != nullptr; ++override)
    result.overrides.emplace_back(*override);
  result.json = raw.json != FALSE;
  result.qr = raw.noQR == FALSE;
  result.showVersion = raw.version != FALSE;
  return result;
}

std::string messageOf(GError *error) {
  const std::unique_ptr<GError, decltype(&g_error_free)> owned(error, &g_error_free);
  return fmt::format("命令行有误：{0}。用 --help 查看用法 / Bad command line: {0}. See --help",
                     owned->message);
}

// Returns the arguments as GLib requires them, with the program's name first.
Strings argumentVector(const std::vector<std::string> &arguments) {
  GPtrArray *list = g_ptr_array_new();
  g_ptr_array_add(list, g_strdup("tevrin-headless"));
  for (const auto &argument : arguments)
    g_ptr_array_add(list, g_strdup(argument.c_str()));
  g_ptr_array_add(list, nullptr);
  return {static_cast<char **>(static_cast<void *>(g_ptr_array_free(list, FALSE))), &g_strfreev};
}

} // namespace

std::expected<CommandLine, std::string> CommandLine::parse(const std::vector<std::string> &arguments) {
  RawOptions raw;
  const auto entries = optionEntries(raw);
  const std::unique_ptr<GOptionContext, decltype(&g_option_context_free)> context(
      g_option_context_new(nullptr), &g_option_context_free);
  g_option_context_set_help_enabled(context.get(), FALSE); // ours returns instead of ending the program
  g_option_context_set_summary(context.get(), kSummary);
  g_option_context_set_description(context.get(), kDescription);
  g_option_context_add_main_entries(context.get(), entries.data(), nullptr);

  Strings vector = argumentVector(arguments);
  char **rest = vector.release();
  GError *error = nullptr;
  const bool parsed = g_option_context_parse_strv(context.get(), &rest, &error) != FALSE;
  const Strings left(rest, &g_strfreev);
  if (!parsed)
    return std::unexpected(messageOf(error));
  if (raw.help != FALSE) {
    CommandLine result;
    const Text text(g_option_context_get_help(context.get(), TRUE, nullptr), &g_free);
    result.help = text.get();
    return result;
  }
  if (left.get()[1] != nullptr)
    return std::unexpected(
        fmt::format("不认识的参数“{0}” / unknown argument \"{0}\"", fennick::displayText(left.get()[1])));
  return chosen(raw);
}

} // namespace quarrow
