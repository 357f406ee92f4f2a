#include "Quarrow/App/Applications.h"

#include <fmt/format.h>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): pthread_sigmask is POSIX
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace quarrow::applications {

namespace {

struct Release {
  void operator()(GDesktopAppInfo *entry) const { ::g_object_unref(entry); }
  void operator()(GError *error) const { ::g_error_free(error); }
  void operator()(GList *list) const { ::g_list_free(list); }
  void operator()(char *text) const { ::g_free(text); }
};
template <typename T>
using Owned = std::unique_ptr<T, Release>;

constexpr std::string_view kOurEntry = "tevrin.desktop";

constexpr const char *kNoApplication = "没有能打开它的应用 / no application opens it";

bool isSet(const char *variable) {
  const char *value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

// Runs between fork and exec: the program does not inherit our blocked signals.
void leaveTerminal(void *) {
  sigset_t none;
  ::sigemptyset(&none);
  std::ignore = ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
  std::ignore = ::setsid();
}

using Files = std::span<const std::filesystem::path>;

std::expected<void, std::string> launch(GDesktopAppInfo *entry, Files files) {
  GError *raw = nullptr;
  std::vector<Owned<char>> kept;
  Owned<GList> uris;
  for (const auto &file : files) {
    Owned<char> uri(::g_filename_to_uri(file.c_str(), nullptr, &raw));
    if (!uri)
      break;
    uris.reset(::g_list_append(uris.release(), uri.get()));
    kept.push_back(std::move(uri));
  }
  constexpr auto kFlags = // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): C joins flags
      static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
  if (raw == nullptr &&
      ::g_desktop_app_info_launch_uris_as_manager(entry, uris.get(), nullptr, kFlags, leaveTerminal, nullptr,
                                                  nullptr, nullptr, &raw) != FALSE)
    return {};
  const Owned<GError> error(raw);
  return std::unexpected(std::string(error->message));
}

std::expected<void, std::string> openAs(const char *type, Files files, const char *otherwise) {
  if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY"))
    return std::unexpected("这里没有桌面 / there is no desktop here");
  GAppInfo *application = ::g_app_info_get_default_for_type(type, FALSE);
  if (application == nullptr)
    return std::unexpected(otherwise);
  const Owned<GDesktopAppInfo> owned(G_DESKTOP_APP_INFO(application));
  return launch(owned.get(), files);
}

std::string iconOf(GAppInfo *application) {
  GIcon *icon = ::g_app_info_get_icon(application);
  if (icon == nullptr)
    return {};
  if (G_IS_FILE_ICON(icon)) {
    const Owned<char> path(::g_file_get_path(::g_file_icon_get_file(G_FILE_ICON(icon))));
    return path ? path.get() : "";
  }
  const char *const *names =
      G_IS_THEMED_ICON(icon) ? ::g_themed_icon_get_names(G_THEMED_ICON(icon)) : nullptr;
  return names != nullptr && *names != nullptr ? *names : "";
}

bool isOffered(GAppInfo *application) {
  const char *id = ::g_app_info_get_id(application);
  return id != nullptr && id != kOurEntry && ::g_app_info_should_show(application) != FALSE &&
         (::g_app_info_supports_files(application) != FALSE ||
          ::g_app_info_supports_uris(application) != FALSE);
}

// Returns the selectable applications of `list`, which is consumed, by name.
std::vector<InstalledApplication> offered(GList *list, bool areMadeForIt) {
  const Owned<GList> owned(list);
  std::vector<InstalledApplication> applications;
  for (const GList *each = list; each != nullptr; each = each->next) {
    const Owned<GDesktopAppInfo> held(G_DESKTOP_APP_INFO(each->data));
    GAppInfo *application = G_APP_INFO(held.get());
    const char *entry = ::g_desktop_app_info_get_filename(held.get());
    if (entry != nullptr && isOffered(application))
      applications.push_back({.entry = entry,
                              .name = ::g_app_info_get_display_name(application),
                              .icon = iconOf(application),
                              .isMadeForIt = areMadeForIt});
  }
  std::ranges::sort(applications, [](const auto &one, const auto &other) {
    return ::g_utf8_collate(one.name.c_str(), other.name.c_str()) < 0;
  });
  return applications;
}

// Returns the media type of files with such a name.
Owned<char> typeOf(const std::filesystem::path &file) {
  return Owned<char>(::g_content_type_guess(file.c_str(), nullptr, 0, nullptr));
}

std::filesystem::path usualFor(const char *type) {
  GAppInfo *application = ::g_app_info_get_default_for_type(type, FALSE);
  if (application == nullptr)
    return {};
  const Owned<GDesktopAppInfo> owned(G_DESKTOP_APP_INFO(application));
  const char *entry = ::g_desktop_app_info_get_filename(owned.get());
  return entry != nullptr ? entry : "";
}

} // namespace

std::vector<InstalledApplication> installedApplications(const std::filesystem::path &file) {
  const auto type = typeOf(file);
  auto applications = offered(::g_app_info_get_recommended_for_type(type.get()), true);
  const auto usual = std::ranges::find(applications, usualFor(type.get()), &InstalledApplication::entry);
  if (usual != applications.end())
    std::rotate(applications.begin(), usual, usual + 1);
  for (auto &other : offered(::g_app_info_get_all(), false))
    if (std::ranges::find(applications, other.entry, &InstalledApplication::entry) == applications.end())
      applications.push_back(std::move(other));
  return applications;
}

std::expected<void, std::string> openWith(const std::filesystem::path &entry,
                                          std::span<const std::filesystem::path> files) {
  const Owned<GDesktopAppInfo> application(::g_desktop_app_info_new_from_filename(entry.c_str()));
  if (!application)
    return std::unexpected(
        fmt::format("{0} 不是可用的应用 / {0} is no usable application", entry.filename().string()));
  return launch(application.get(), files);
}

std::expected<void, std::string> openFiles(std::span<const std::filesystem::path> files) {
  std::map<std::string, std::vector<std::filesystem::path>> kinds;
  for (const auto &file : files)
    kinds[typeOf(file).get()].push_back(file);
  std::expected<void, std::string> result;
  for (const auto &[kind, alike] : kinds)
    if (auto opened = openAs(kind.c_str(), alike, kNoApplication); !opened)
      result = std::move(opened);
  return result;
}

std::expected<void, std::string> openFile(const std::filesystem::path &file) { return openFiles({&file, 1}); }

std::expected<void, std::string> openFolder(const std::filesystem::path &folder) {
  return openAs("inode/directory", {&folder, 1}, "没有文件管理器 / there is no file manager");
}

} // namespace quarrow::applications
