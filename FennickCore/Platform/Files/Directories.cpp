#include "FennickCore/Platform/Files/Directories.h"

#include <glib.h>

#include <system_error>

namespace fennick {

namespace {
constexpr const char *kProgramName = "tevrin";
}

std::filesystem::path picturesDirectory() {
  if (const char *pictures = g_get_user_special_dir(G_USER_DIRECTORY_PICTURES))
    return pictures;
  return std::filesystem::path(g_get_home_dir()) / "Pictures";
}

std::filesystem::path configurationDirectory() {
  return std::filesystem::path(g_get_user_config_dir()) / kProgramName;
}

std::filesystem::path cacheDirectory() {
  return std::filesystem::path(g_get_user_cache_dir()) / kProgramName;
}

std::filesystem::path programDirectory() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

std::filesystem::path programDataDirectory() {
  return programDirectory().parent_path() / "share" / kProgramName;
}

} // namespace fennick
