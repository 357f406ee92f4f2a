#include "FennickCore/Platform/Files/FolderEntries.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <string_view>

namespace fennick {

namespace {

// Reads the status only if the listing does not contain the kind.
FileKind kindOf(int folder, const dirent &entry) {
  switch (entry.d_type) {
  case DT_REG:
    return FileKind::regular;
  case DT_DIR:
    return FileKind::directory;
  case DT_LNK:
    return FileKind::link;
  case DT_UNKNOWN: {
    struct stat status{};
    if (::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
      return kindFromMode(status.st_mode);
    return FileKind::other;
  }
  default:
    return FileKind::other;
  }
}

} // namespace

FileKind kindFromMode(std::uint32_t mode) {
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

IOResult<FileDescriptor> openDirectory(const std::filesystem::path &folder, Links links) {
  const int noFollow = links == Links::refuse ? O_NOFOLLOW : 0;
  FileDescriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | noFollow));
  if (!fd.isOpen())
    return lastFailure();
  return fd;
}

IOResult<void> visitFolder(const std::filesystem::path &folder, Links links,
                           const std::function<void(int, const char *, FileKind)> &visit) {
  auto fd = openDirectory(folder, links);
  if (!fd)
    return std::unexpected(fd.error());
  const std::unique_ptr<DIR, int (*)(DIR *)> stream(::fdopendir(fd->get()), ::closedir);
  if (!stream)
    return lastFailure();
  const int raw = fd->release(); // the stream owns it now
  while (true) {
    errno = 0;
    const dirent *entry = ::readdir(stream.get());
    if (entry == nullptr)
      break;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..")
      visit(raw, entry->d_name, kindOf(raw, *entry));
  }
  return errno != 0 ? IOResult<void>(lastFailure()) : IOResult<void>();
}

} // namespace fennick
