#include "FennickCore/Platform/Files/FileSystem.h"

#include "FennickCore/Platform/Files/FolderEntries.h"
#include "FennickCore/Platform/System/Random.h"
#include "FennickCore/Platform/System/SystemCalls.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <limits>
#include <utility>

namespace fennick {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kFileMode = 0666; // narrowed by the user's umask
constexpr mode_t kDirectoryMode = 0777;
constexpr mode_t kPrivateMode = 0600;

IOResult<void> writeAll(int fd, std::span<const std::byte> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = retried([&] { return ::write(fd, bytes.data(), bytes.size()); });
    if (count < 0)
      return lastFailure();
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return {};
}

FileIdentity identityOf(const struct stat &status) {
  return {.device = status.st_dev, .inode = status.st_ino};
}

// Starts writing to the disk in the background every few MiB, so that the final sync of a large upload has
// little left to do. 8 MiB keeps a hard disk streaming and costs one call in 32 chunks.
constexpr std::int64_t kWritebackStep = std::int64_t{8} << 20;

class SystemFile final : public WritableFile {
public:
  explicit SystemFile(FileDescriptor fd) : fd_(std::move(fd)) {}

  IOResult<void> write(std::span<const std::byte> bytes) override {
    if (auto result = writeAll(fd_.get(), bytes); !result)
      return result;
    written_ += static_cast<std::int64_t>(bytes.size());
    if (written_ - started_ >= kWritebackStep) {
      // Only a hint: a file system that does not support it writes at the sync.
      ::sync_file_range(fd_.get(), started_, written_ - started_, SYNC_FILE_RANGE_WRITE);
      started_ = written_;
    }
    return {};
  }

  IOResult<void> sync() override {
    return checked(retried([this] { return ::fsync(fd_.get()); }));
  }

  IOResult<void> close() override {
    // Linux releases the descriptor even if close is interrupted, so it is not called again.
    const int status = ::close(fd_.release());
    return status != 0 && errno != EINTR ? IOResult<void>(lastFailure()) : IOResult<void>();
  }

private:
  FileDescriptor fd_;
  std::int64_t written_ = 0;
  std::int64_t started_ = 0;
};

bool renameFlagsUnsupported(int error) { return error == EINVAL || error == ENOSYS || error == ENOTSUP; }

// Keeps the promise of renameat2 with RENAME_NOREPLACE on file systems that lack it: a hard link fails if the
// name is taken; where there are no hard links either, an empty file claims the name first.
IOResult<void> moveByLinkOrClaim(const fs::path &from, const fs::path &to) {
  if (::link(from.c_str(), to.c_str()) == 0) {
    auto moved = checked(::unlink(from.c_str()));
    if (!moved)
      ::unlink(to.c_str());
    return moved;
  }
  if (errno == EEXIST)
    return lastFailure();
  const FileDescriptor claim(::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
  if (!claim.isOpen())
    return lastFailure();
  auto moved = checked(::rename(from.c_str(), to.c_str()));
  if (!moved)
    ::unlink(to.c_str());
  return moved;
}

IOResult<struct stat> statusOf(const fs::path &file, int flags) {
  struct stat status{};
  if (::fstatat(AT_FDCWD, file.c_str(), &status, flags) != 0)
    return lastFailure();
  return status;
}

} // namespace

IOResult<std::unique_ptr<WritableFile>> SystemFileSystem::createFile(const fs::path &file) {
  FileDescriptor fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kFileMode));
  if (!fd.isOpen())
    return lastFailure();
  return std::make_unique<SystemFile>(std::move(fd));
}

IOResult<void> SystemFileSystem::createDirectories(const fs::path &folder) {
  if (::mkdir(folder.c_str(), kDirectoryMode) == 0)
    return syncDirectory(folder.parent_path());
  if (errno == EEXIST) {
    const auto status = statusOf(folder, 0);
    if (!status)
      return std::unexpected(status.error());
    return S_ISDIR(status->st_mode) ? IOResult<void>() : IOResult<void>(failure(ENOTDIR));
  }
  if (errno != ENOENT || !folder.has_relative_path())
    return lastFailure();
  if (auto parent = createDirectories(folder.parent_path()); !parent)
    return parent;
  if (::mkdir(folder.c_str(), kDirectoryMode) != 0 && errno != EEXIST)
    return lastFailure();
  return syncDirectory(folder.parent_path());
}

IOResult<void> SystemFileSystem::moveNoReplace(const fs::path &from, const fs::path &to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
    return {};
  if (!renameFlagsUnsupported(errno))
    return lastFailure();
  return moveByLinkOrClaim(from, to);
}

IOResult<void> SystemFileSystem::replace(const fs::path &from, const fs::path &to) {
  return checked(::rename(from.c_str(), to.c_str()));
}

IOResult<void> SystemFileSystem::link(const fs::path &from, const fs::path &to) {
  return checked(::link(from.c_str(), to.c_str()));
}

IOResult<void> SystemFileSystem::remove(const fs::path &file) { return checked(::unlink(file.c_str())); }

IOResult<void> SystemFileSystem::syncDirectory(const fs::path &folder) {
  const auto fd = openDirectory(folder.empty() ? fs::path(".") : folder);
  if (!fd)
    return std::unexpected(fd.error());
  const auto synced = checked(retried([&] { return ::fsync(fd->get()); }));
  // Some network and FUSE file systems have no notion of syncing a folder and answer EINVAL.
  if (!synced && synced.error().value() == EINVAL)
    return {};
  return synced;
}

IOResult<std::vector<DirectoryEntry>> SystemFileSystem::list(const fs::path &folder) {
  std::vector<DirectoryEntry> entries;
  const auto visited = visitFolder(
      folder, Links::follow, [&](int, const char *name, FileKind kind) { entries.push_back({name, kind}); });
  if (!visited)
    return std::unexpected(visited.error());
  return entries;
}

IOResult<std::int64_t> SystemFileSystem::availableBytes(const fs::path &folder) {
  struct statvfs volume{};
  if (retried([&] { return ::statvfs(folder.c_str(), &volume); }) != 0)
    return lastFailure();
  std::uint64_t bytes = 0;
  if (__builtin_mul_overflow(std::uint64_t{volume.f_bavail}, std::uint64_t{volume.f_frsize}, &bytes) ||
      !std::in_range<std::int64_t>(bytes))
    return std::numeric_limits<std::int64_t>::max();
  return static_cast<std::int64_t>(bytes);
}

IOResult<ReadableFile> ReadableFile::open(const fs::path &file, Links links) {
  // O_NONBLOCK: opening a pipe must not wait for its other end.
  const int noFollow = links == Links::refuse ? O_NOFOLLOW : 0;
  FileDescriptor fd(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | noFollow));
  if (!fd.isOpen())
    return lastFailure();
  struct stat status{};
  if (::fstat(fd.get(), &status) != 0)
    return lastFailure();
  if (!S_ISREG(status.st_mode))
    return failure(EINVAL);
  return ReadableFile(std::move(fd));
}

IOResult<std::size_t> ReadableFile::read(std::span<std::byte> into) {
  const ssize_t count = retried([&] { return ::read(fd_.get(), into.data(), into.size()); });
  if (count < 0)
    return lastFailure();
  return static_cast<std::size_t>(count);
}

IOResult<std::int64_t> ReadableFile::size() const {
  struct stat status{};
  if (::fstat(fd_.get(), &status) != 0)
    return lastFailure();
  return status.st_size;
}

IOResult<std::int64_t> fileSize(const fs::path &file) {
  const auto status = statusOf(file, AT_SYMLINK_NOFOLLOW);
  if (!status)
    return std::unexpected(status.error());
  if (!S_ISREG(status->st_mode))
    return failure(EINVAL);
  return status->st_size;
}

IOResult<FileKind> fileKind(const fs::path &file) {
  const auto status = statusOf(file, AT_SYMLINK_NOFOLLOW);
  if (!status)
    return std::unexpected(status.error());
  return kindFromMode(status->st_mode);
}

IOResult<FileIdentity> fileIdentity(const fs::path &file) {
  const auto status = statusOf(file, 0);
  if (!status)
    return std::unexpected(status.error());
  return identityOf(*status);
}

IOResult<std::string> readFile(const fs::path &file) {
  auto opened = ReadableFile::open(file, Links::follow);
  if (!opened)
    return std::unexpected(opened.error());
  std::string content;
  std::array<std::byte, 16384> chunk{};
  while (true) {
    const auto count = opened->read(chunk);
    if (!count)
      return std::unexpected(count.error());
    if (*count == 0)
      return content;
    content.append(reinterpret_cast<const char *>(chunk.data()), *count);
  }
}

IOResult<void> replaceFile(const fs::path &name, std::string_view content) {
  std::error_code isNew;
  const fs::path existing = fs::canonical(name, isNew);
  const fs::path &file = isNew ? name : existing;
  fs::path aside = file;
  aside += "." + newUUID() + ".tmp";
  FileDescriptor fd(::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kPrivateMode));
  if (!fd.isOpen())
    return lastFailure();
  SystemFileSystem files;
  SystemFile written(std::move(fd));
  auto result = written.write(std::as_bytes(std::span(content)));
  if (result)
    result = written.sync();
  if (auto closed = written.close(); result)
    result = closed;
  if (result)
    result = files.replace(aside, file);
  if (!result) {
    ::unlink(aside.c_str());
    return result;
  }
  return files.syncDirectory(file.parent_path());
}

IOResult<DirectoryLock> DirectoryLock::tryLock(const fs::path &folder, Mode mode) {
  return take(folder, (mode == Mode::shared ? LOCK_SH : LOCK_EX) | LOCK_NB);
}

IOResult<DirectoryLock> DirectoryLock::lock(const fs::path &folder, Mode mode) {
  return take(folder, mode == Mode::shared ? LOCK_SH : LOCK_EX);
}

IOResult<DirectoryLock> DirectoryLock::take(const fs::path &folder, int operation) {
  auto fd = openDirectory(folder, Links::refuse);
  if (!fd)
    return std::unexpected(fd.error());
  if (retried([&] { return ::flock(fd->get(), operation); }) != 0)
    return lastFailure();
  struct stat status{};
  if (::fstat(fd->get(), &status) != 0)
    return lastFailure();
  return DirectoryLock(std::move(*fd), identityOf(status));
}

IOResult<void> DirectoryLock::share() {
  return checked(retried([this] { return ::flock(fd_.get(), LOCK_SH); }));
}

} // namespace fennick
