#include "FennickCore/Platform/FileStatus.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>

namespace fennick {

namespace fs = std::filesystem;

namespace {

std::unexpected<std::error_code> lastFailure() {
  return std::unexpected(std::error_code(errno, std::generic_category()));
}

FileKind kindOf(std::uint32_t mode) {
  switch (mode & S_IFMT) {
  case S_IFREG:
    return FileKind::regular;
  case S_IFDIR:
    return FileKind::directory;
  case S_IFLNK:
    return FileKind::link;
  default:
    return FileKind::other;
  }
}

// Moments beyond what the clock can hold, which a file may claim, become the furthest ones.
Instant instantOf(const struct statx_timestamp &time) {
  constexpr std::int64_t kFurthest = Instant::max().time_since_epoch() / std::chrono::seconds(1) - 1;
  const auto seconds = std::clamp<std::int64_t>(time.tv_sec, -kFurthest, kFurthest);
  return Instant(std::chrono::seconds(seconds) + std::chrono::nanoseconds(time.tv_nsec));
}

IOResult<FileStatus> statusAt(int folder, const char *name) {
  struct statx found{};
  if (::statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &found) !=
      0)
    return lastFailure();
  const bool hasBirth = (found.stx_mask & STATX_BTIME) != 0;
  return FileStatus{
      .kind = kindOf(found.stx_mode),
      .bytes = static_cast<std::int64_t>(found.stx_size),
      .modified = instantOf(found.stx_mtime),
      .born = hasBirth ? std::optional(instantOf(found.stx_btime)) : std::nullopt,
      .permissions = found.stx_mode & 0777U,
      .identity = {.device = ::makedev(found.stx_dev_major, found.stx_dev_minor), .inode = found.stx_ino}};
}

// Asks the file system only where the listing itself does not tell.
FileKind kindOf(int folder, const dirent &entry) {
  switch (entry.d_type) {
  case DT_REG:
    return FileKind::regular;
  case DT_DIR:
    return FileKind::directory;
  case DT_LNK:
    return FileKind::link;
  case DT_UNKNOWN: {
    const auto status = statusAt(folder, entry.d_name);
    return status ? status->kind : FileKind::other;
  }
  default:
    return FileKind::other;
  }
}

} // namespace

IOResult<FileStatus> fileStatus(const fs::path &file) { return statusAt(AT_FDCWD, file.c_str()); }

IOResult<std::vector<FolderEntry>>
readFolder(const fs::path &folder, Links links,
           const std::function<bool(std::string_view name, FileKind kind)> &wanted) {
  const int noFollow = links == Links::refuse ? O_NOFOLLOW : 0;
  FileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | noFollow));
  if (!fd.isOpen())
    return lastFailure();
  const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(fd.get()), ::closedir);
  if (!stream)
    return lastFailure();
  const int raw = fd.release(); // the stream owns it now
  std::vector<FolderEntry> entries;
  while (true) {
    errno = 0;
    const dirent *entry = ::readdir(stream.get());
    if (entry == nullptr)
      break;
    const std::string_view name = entry->d_name;
    if (name == "." || name == ".." || !wanted(name, kindOf(raw, *entry)))
      continue;
    if (const auto status = statusAt(raw, entry->d_name))
      entries.push_back({std::string(name), *status});
  }
  if (errno != 0)
    return lastFailure();
  return entries;
}

IOResult<void> setModificationTime(const fs::path &file, Instant modified) {
  const auto since = modified.time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
  const std::array<timespec, 2> times{
      timespec{.tv_sec = 0, .tv_nsec = UTIME_OMIT},
      timespec{.tv_sec = seconds.count(), .tv_nsec = (since - seconds).count()}};
  if (::utimensat(AT_FDCWD, file.c_str(), times.data(), AT_SYMLINK_NOFOLLOW) != 0)
    return lastFailure();
  return {};
}

IOResult<void> setPermissions(const fs::path &file, std::uint32_t permissions) {
  if (::fchmodat(AT_FDCWD, file.c_str(), permissions, AT_SYMLINK_NOFOLLOW) != 0)
    return lastFailure();
  return {};
}

} // namespace fennick
