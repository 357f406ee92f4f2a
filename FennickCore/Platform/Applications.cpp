#include "FennickCore/Platform/Applications.h"

#include <fmt/format.h>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): pthread_sigmask is POSIX
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <tuple>

namespace fennick {

namespace {

struct Release {
  void operator()(GDesktopAppInfo *entry) const { ::g_object_unref(entry); }
  void operator()(GError *error) const { ::g_error_free(error); }
  void operator()(GList *list) const { ::g_list_free(list); }
  void operator()(char *text) const { ::g_free(text); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

bool isSet(const char *variable) {
  const char *value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// Between fork and exec: the program does not inherit which signals we block.
void leaveTerminal(void *) {
  sigset_t none;
  ::sigemptyset(&none);
  std::ignore = ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
  std::ignore = ::setsid();
}

std::expected<void, std::string> launch(GDesktopAppInfo *entry, const std::filesystem::path &file) {
  GError *raw = nullptr;
  const Owned<char> uri(::g_filename_to_uri(file.c_str(), nullptr, &raw));
  const Owned<GList> uris(uri ? ::g_list_append(nullptr, uri.get()) : nullptr);
  constexpr auto kFlags = // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): C joins flags
      static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
  if (uri && ::g_desktop_app_info_launch_uris_as_manager(entry, uris.get(), nullptr, kFlags, leaveTerminal,
                                                         nullptr, nullptr, nullptr, &raw) != FALSE)
    return {};
  const Owned<GError> error(raw);
  return std::unexpected(std::string(error->message));
}

std::expected<void, std::string> openAs(const char *type, const std::filesystem::path &file,
                                        const char *otherwise) {
  if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY"))
    return std::unexpected("这里没有桌面 / there is no desktop here");
  GAppInfo *application = ::g_app_info_get_default_for_type(type, FALSE);
  if (application == nullptr)
    return std::unexpected(otherwise);
  const Owned<GDesktopAppInfo> owned(G_DESKTOP_APP_INFO(application));
  return launch(owned.get(), file);
}

} // namespace

std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                          const std::filesystem::path &file) {
  const Owned<GDesktopAppInfo> application(::g_desktop_app_info_new_from_filename(entry.c_str()));
  if (!application)
    return std::unexpected(
        fmt::format("{0} 不是可用的应用 / {0} is no usable application", entry.filename().string()));
  return launch(application.get(), file);
}

std::expected<void, std::string> openFile(const std::filesystem::path &file) {
  const Owned<char> type(::g_content_type_guess(file.c_str(), nullptr, 0, nullptr));
  return openAs(type.get(), file, "没有能打开它的应用 / no application opens it");
}

std::expected<void, std::string> openFolder(const std::filesystem::path &folder) {
  return openAs("inode/directory", folder, "没有文件管理器 / there is no file manager");
}

} // namespace fennick
