#include "Quarrow/Desktop/LaunchOptions.h"

#include "FennickCore/Support/Text.h"

#include <fmt/format.h>

#include <string_view>
#include <system_error>

namespace quarrow {

namespace {

constexpr const char *kLoginItem = "--login-item";
constexpr std::string_view kStateDirectory = "--state-dir";
constexpr std::string_view kActivationToken = "--activation-token=";

bool namesWindow(std::string_view argument) {
  return argument == "--show-settings" || argument == "--show-panel";
}

std::expected<std::filesystem::path, std::string> directory(const std::string &text) {
  std::error_code error;
  auto result = std::filesystem::absolute(text, error);
  if (error || text.empty())
    return std::unexpected(
        fmt::format("--state-dir 要一个目录，得到“{0}” / --state-dir takes a folder, got \"{0}\"",
                    fennick::displayText(text)));
  return result;
}

// Reads a switch. Returns false if it is not one.
bool readSwitch(LaunchOptions &options, const std::string &argument) {
  if (namesWindow(argument))
    options.windows.push_back(argument);
  else if (argument == kLoginItem)
    options.loginItem = true;
  else if (argument == "--self-test")
    options.selfTest = true;
  else if (argument == "--version")
    options.showVersion = true;
  else if (argument == "--help" || argument == "-h")
    options.showHelp = true;
  else
    return false;
  return true;
}

} // namespace

std::expected<LaunchOptions, std::string> LaunchOptions::parse(const std::vector<std::string> &arguments) {
  LaunchOptions result;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    if (readSwitch(result, *argument))
      continue;
    std::string value;
    if (argument->starts_with(std::string(kStateDirectory) + "="))
      value = argument->substr(kStateDirectory.size() + 1);
    else if (*argument != kStateDirectory)
      return std::unexpected(
          fmt::format("不认识的参数“{0}”。用 --help 查看用法 / Unknown argument \"{0}\". See --help",
                      fennick::displayText(*argument)));
    else if (std::next(argument) != arguments.end())
      value = *++argument;
    const auto read = directory(value);
    if (!read)
      return std::unexpected(read.error());
    result.stateDirectory = *read;
  }
  return result;
}

const char *LaunchOptions::help() {
  return "用法 / Usage: tevrin [...]\n\n"
         "手机扫码，照片和视频直接存进这台电脑的文件夹。已经在运行时，请求转交给它。\n"
         "Phones on the same network scan the code and drop photos and videos into a folder of this "
         "computer.\n"
         "While it runs, what another launch asks for is handed over to it.\n\n"
         "  --show-panel      打开二维码面板 / open the panel with the code\n"
         "  --show-settings   打开设置 / open the settings\n"
         "  --login-item      登录时启动，不打开窗口 / started at login: open no window\n"
         "  --state-dir DIR   设置、密钥和缓存的目录 / where settings, key and caches live\n"
         "  --self-test       打开每个窗口后退出 / open every window once and quit\n"
         "  --version         显示版本 / show the version\n"
         "  -h, --help        显示帮助 / show this help\n";
}

std::vector<std::string> HandOver::arguments() const {
  std::vector<std::string> result = windows;
  if (loginItem)
    result.emplace_back(kLoginItem);
  if (!activationToken.empty())
    result.push_back(std::string(kActivationToken) + activationToken);
  return result;
}

HandOver HandOver::parse(const std::vector<std::string> &arguments) {
  HandOver result;
  for (const auto &argument : arguments) {
    if (namesWindow(argument))
      result.windows.push_back(argument);
    else if (argument == kLoginItem)
      result.loginItem = true;
    else if (argument.starts_with(kActivationToken))
      result.activationToken = argument.substr(kActivationToken.size());
  }
  return result;
}

} // namespace quarrow
