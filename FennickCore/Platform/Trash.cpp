#include "FennickCore/Platform/Trash.h"

#include "FennickCore/Platform/Log.h"

#include <fmt/format.h>
#include <gio/gio.h>

#include <memory>

namespace fennick {

namespace {

struct Unref {
  void operator()(GFile *file) const { ::g_object_unref(file); }
  void operator()(GError *error) const { ::g_error_free(error); }
};

std::errc codeOf(const GError &error) {
  if (error.domain != ::g_io_error_quark())
    return std::errc::io_error;
  switch (error.code) {
  case G_IO_ERROR_NOT_FOUND:
    return std::errc::no_such_file_or_directory;
  case G_IO_ERROR_PERMISSION_DENIED:
    return std::errc::permission_denied;
  case G_IO_ERROR_NOT_SUPPORTED:
    return std::errc::not_supported;
  case G_IO_ERROR_NO_SPACE:
    return std::errc::no_space_on_device;
  default:
    return std::errc::io_error;
  }
}

} // namespace

IOResult<void> SystemTrash::moveToTrash(const std::filesystem::path &file) {
  // The local file system itself: the desktop's other places would be asked over its bus.
  const std::unique_ptr<GFile, Unref> target(::g_vfs_get_file_for_path(::g_vfs_get_local(), file.c_str()));
  GError *raw = nullptr;
  if (::g_file_trash(target.get(), nullptr, &raw) != FALSE)
    return {};
  const std::unique_ptr<GError, Unref> error(raw);
  log(fmt::format("cannot move {} to the trash: {}", file.string(), error->message));
  return std::unexpected(std::make_error_code(codeOf(*error)));
}

} // namespace fennick
