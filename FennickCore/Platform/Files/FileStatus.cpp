#include "FennickCore/Platform/Files/FileStatus.h"

#include "FennickCore/Platform/Files/FolderEntries.h"
#include "FennickCore/Platform/System/SystemCalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>

namespace fennick {

namespace fs = std::filesystem;

namespace {

// Times beyond the range of the clock, which a file may claim, become the earliest or latest one.
Instant instantOf(const struct statx_timestamp &time) {
  constexpr std::int64_t kFurthest = Instant::max().time_since_epoch() / std::chrono::seconds(1) - 1;
  const auto seconds = std::clamp<std::int64_t>(time.tv_sec, -kFurthest, kFurthest);
  return Instant(std::chrono::seconds(seconds) + std::chrono::nanoseconds(time.tv_nsec));
}

// Treats a refused change as success: the file system does not support it, or reserves it to another user.
IOResult<void> toleratingRefusal(const IOResult<void> &changed) {
  constexpr std::array kRefusals{EPERM, EACCES, EOPNOTSUPP, ENOSYS, EINVAL};
  if (!changed && std::ranges::find(kRefusals, changed.error().value()) != kRefusals.end())
    return {};
  return changed;
}

IOResult<FileStatus> statusAt(int folder, const char *name) {
  struct statx found{};
  if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &found) !=
      0)
    return lastFailure();
  const bool hasBirth = (found.stx_mask & STATX_BTIME) != 0;
  return FileStatus{
      .kind = kindFromMode(found.stx_mode),
      .bytes = static_cast<std::int64_t>(found.stx_size),
      .modified = instantOf(found.stx_mtime),
      .born = hasBirth ? std::optional(instantOf(found.stx_btime)) : std::nullopt,
      .permissions = found.stx_mode & 0777U,
      .identity = {.device = ::makedev(found.stx_dev_major, found.stx_dev_minor), .inode = found.stx_ino}};
}

} // namespace

IOResult<FileStatus> fileStatus(const fs::path &file) { return statusAt(AT_FDCWD, file.c_str()); }

IOResult<std::vector<FolderEntry>>
readFolder(const fs::path &folder, Links links,
           const std::function<bool(std::string_view name, FileKind kind)> &wanted) {
  std::vector<FolderEntry> entries;
  const auto visited = visitFolder(folder, links, [&](int fd, const char *name, FileKind kind) {
    if (!wanted(name, kind))
      return;
    if (const auto status = statusAt(fd, name))
      entries.push_back({name, *status});
  });
  if (!visited)
    return std::unexpected(visited.error());
  return entries;
}

IOResult<void> setModificationTime(const fs::path &file, Instant modified) {
  const auto since = modified.time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
  const std::array<timespec, 2> times{
      timespec{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
      timespec{.tv_sec = seconds.count(), .tv_nsec = (since - seconds).count()}};
  return checked(::utimensat(AT_FDCWD, file.c_str(), times.data(), AT_SYMLINK_NOFOLLOW));
}

IOResult<void> setPermissions(const fs::path &file, std::uint32_t permissions) {
  return checked(::fchmodat(AT_FDCWD, file.c_str(), permissions, AT_SYMLINK_NOFOLLOW));
}

IOResult<void> copyPermissionsAndTime(const FileStatus &like, const fs::path &file) {
  const auto now = fileStatus(file);
  if (!now)
    return std::unexpected(now.error());
  if (now->permissions != like.permissions)
    if (auto set = toleratingRefusal(setPermissions(file, like.permissions)); !set)
      return set;
  if (now->modified == like.modified)
    return {};
  return toleratingRefusal(setModificationTime(file, like.modified));
}

} // namespace fennick
