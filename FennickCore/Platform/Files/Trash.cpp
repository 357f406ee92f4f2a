#include "FennickCore/Platform/Files/Trash.h"

#include "FennickCore/Platform/Files/FileStatus.h"
#include "FennickCore/Platform/Files/FreeName.h"
#include "FennickCore/Platform/System/Log.h"

#include <fmt/format.h>
#include <gio/gio.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <optional>
#include <tuple>

namespace fennick {

namespace fs = std::filesystem;

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

// Returns the topmost folder on the same volume as `folder`.
fs::path topOfVolume(fs::path folder) {
  const auto device = [](const fs::path &path) {
    const auto identity = fileIdentity(path);
    return identity ? std::optional(identity->device) : std::nullopt;
  };
  const auto own = device(folder);
  while (folder.has_relative_path() && device(folder.parent_path()) == own)
    folder = folder.parent_path();
  return folder;
}

// Returns the name that a file has in the trash's folder `files`. It is usually the old name; if that was
// taken, the trash chose one that begins like it, and `status` identifies the file.
std::optional<std::string> nameInTrash(const fs::path &files, const fs::path &original,
                                       const FileStatus &status) {
  const std::string name = original.filename().string();
  if (const auto same = fileStatus(files / name); same && same->identity == status.identity)
    return name;
  const std::string stem = original.stem().string();
  const auto entries = readFolder(files, Links::refuse,
                                  [&](std::string_view other, FileKind) { return other.starts_with(stem); });
  if (entries)
    for (const auto &entry : *entries)
      if (entry.status.identity == status.identity)
        return entry.name;
  return std::nullopt;
}

// Finds a trashed file by its identity: in the trash of the home folder or in one of the two places of a
// volume's own trash.
Trashed findInTrash(const fs::path &original, const FileStatus &before) {
  std::error_code unresolved;
  const fs::path top = topOfVolume(fs::canonical(original.parent_path(), unresolved));
  const std::string user = std::to_string(::getuid());
  for (const fs::path &trash : std::array{fs::path(::g_get_user_data_dir()) / "Trash", top / ".Trash" / user,
                                          top / (".Trash-" + user)})
    if (const auto name = nameInTrash(trash / "files", original, before))
      return {original, trash / "files" / *name, trash / "info" / (*name + ".trashinfo")};
  return {.original = original, .file = {}, .record = {}};
}

} // namespace

IOResult<Trashed> SystemTrash::moveToTrash(const fs::path &file) {
  const auto before = fileStatus(file);
  if (!before)
    return std::unexpected(before.error());
  if (const auto moved = discard(file); !moved)
    return std::unexpected(moved.error());
  return findInTrash(file, *before);
}

IOResult<void> SystemTrash::discard(const fs::path &file) {
  // Uses the local file system directly; the default implementation would ask other services over the session
  // bus.
  const std::unique_ptr<GFile, Unref> target(::g_vfs_get_file_for_path(::g_vfs_get_local(), file.c_str()));
  GError *raw = nullptr;
  if (::g_file_trash(target.get(), nullptr, &raw) != FALSE)
    return {};
  const std::unique_ptr<GError, Unref> error(raw);
  log(fmt::format("cannot move {} to the trash: {}", file.string(), error->message));
  return std::unexpected(std::make_error_code(codeOf(*error)));
}

IOResult<fs::path> restoreFromTrash(const Trashed &trashed, FileSystem &files) {
  if (trashed.file.empty())
    return std::unexpected(std::make_error_code(std::errc::no_such_file_or_directory));
  const fs::path folder = trashed.original.parent_path();
  if (const auto made = files.createDirectories(folder); !made)
    return std::unexpected(made.error());
  auto back = underFreeName(folder, trashed.original.filename(), [&](const fs::path &target) {
    return files.moveNoReplace(trashed.file, target);
  });
  if (!back)
    return back;
  if (!trashed.record.empty())
    std::ignore = files.remove(trashed.record); // the trash ignores and removes a record without a file
  std::ignore = files.syncDirectory(folder);
  return back;
}

} // namespace fennick
