#include "FennickCore/Platform/Files/DirectoryWatch.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace fennick {

namespace {

constexpr std::uint32_t kNames = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF |
                                 IN_MOVE_SELF | IN_ONLYDIR | IN_EXCL_UNLINK;
// Setting only the modification time counts as writing.
constexpr std::uint32_t kChanges = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr std::uint32_t kContent = kNames | kChanges;

// Local file systems that <linux/magic.h> does not name.
constexpr std::uint32_t kExFATMagic = 0x2011BAB0;
constexpr std::uint32_t kNTFS3Magic = 0x7366746E;
constexpr std::uint32_t kZFSMagic = 0x2FC12FC1;
constexpr std::uint32_t kBcachefsMagic = 0xCA451A4E;
constexpr std::uint32_t kHFSPlusMagic = 0x482B;

DirectoryChange::Kind kindOf(std::uint32_t mask) {
  using Kind = DirectoryChange::Kind;
  if ((mask & (IN_CREATE | IN_MOVED_TO)) != 0)
    return Kind::appeared;
  return (mask & kChanges) != 0 ? Kind::changed : Kind::vanished;
}

DirectoryChange changeOf(const inotify_event &event, const char *name) {
  using Kind = DirectoryChange::Kind;
  if ((event.mask & IN_Q_OVERFLOW) != 0)
    return {.kind = Kind::overflow, .watch = 0, .name = {}};
  if ((event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT)) != 0)
    return {.kind = Kind::lost, .watch = event.wd, .name = {}};
  return {.kind = kindOf(event.mask),
          .watch = event.wd,
          .name = name,
          .isDirectory = (event.mask & IN_ISDIR) != 0};
}

} // namespace

bool isOnLocalDrive(const std::filesystem::path &folder) {
  struct statfs volume{};
  if (::statfs(folder.c_str(), &volume) != 0)
    return false;
  switch (static_cast<std::uint32_t>(volume.f_type)) {
  case EXT4_SUPER_MAGIC:
  case BTRFS_SUPER_MAGIC:
  case XFS_SUPER_MAGIC:
  case F2FS_SUPER_MAGIC:
  case TMPFS_MAGIC:
  case RAMFS_MAGIC:
  case MSDOS_SUPER_MAGIC:
  case OVERLAYFS_SUPER_MAGIC:
  case REISERFS_SUPER_MAGIC:
  case NILFS_SUPER_MAGIC:
  case kExFATMagic:
  case kNTFS3Magic:
  case kZFSMagic:
  case kBcachefsMagic:
  case kHFSPlusMagic:
    return true;
  default:
    return false;
  }
}

DirectoryWatch::DirectoryWatch(Shared shared)
    : shared_(shared), inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      wakeup_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

IOResult<int> DirectoryWatch::add(const std::filesystem::path &folder, Scope scope) {
  if (!inotify_.isOpen() || (shared_ == Shared::refuse && !isOnLocalDrive(folder)))
    return std::unexpected(std::make_error_code(std::errc::not_supported));
  const int watch =
      ::inotify_add_watch(inotify_.get(), folder.c_str(), scope == Scope::content ? kContent : kNames);
  if (watch < 0)
    return std::unexpected(std::error_code(errno, std::generic_category()));
  return watch;
}

void DirectoryWatch::remove(int watch) { ::inotify_rm_watch(inotify_.get(), watch); }

std::vector<DirectoryChange> DirectoryWatch::drain() {
  std::vector<DirectoryChange> changes;
  alignas(inotify_event) std::array<char, 16384> buffer{};
  while (true) {
    const ssize_t count = ::read(inotify_.get(), buffer.data(), buffer.size());
    if (count <= 0)
      return changes;
    for (const char *at = buffer.data(); at < buffer.data() + count;) {
      inotify_event event{};
      std::memcpy(&event, at, sizeof event);
      changes.push_back(changeOf(event, event.len > 0 ? at + sizeof event : ""));
      at += sizeof event + event.len;
    }
  }
}

void DirectoryWatch::watchMounts() {
  mounts_ = FileDescriptor(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
}

DirectoryWatch::Woken DirectoryWatch::awaitChanges() { return sleep(Until::changes); }

DirectoryWatch::Woken DirectoryWatch::pause(Seconds length) { return sleep(Until::timeout, length); }

void DirectoryWatch::interrupt() { ::eventfd_write(wakeup_.get(), 1); }

DirectoryWatch::Woken DirectoryWatch::sleep(Until until, Seconds most) {
  const bool isPause = until == Until::timeout;
  std::array<pollfd, 3> waiting{
      pollfd{.fd = wakeup_.get(), .events = POLLIN, .revents = 0},
      pollfd{.fd = isPause ? -1 : mounts_.get(), .events = POLLPRI, .revents = 0},
      pollfd{.fd = isPause ? -1 : inotify_.get(), .events = POLLIN, .revents = 0},
  };
  const int timeout =
      isPause ? static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(most).count()) : -1;
  while (::poll(waiting.data(), waiting.size(), timeout) < 0 && errno == EINTR) {
  }
  if (waiting[0].revents != 0)
    return Woken::interrupted;
  if (waiting[1].revents != 0)
    return Woken::mounts; // before the changes: the kernel reports this once, but changes until they are
                          // drained
  return waiting[2].revents != 0 ? Woken::changes : Woken::timeout;
}

} // namespace fennick
