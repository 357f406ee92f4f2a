#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace fennick {

// A file open for writing; owned by exactly one object. Destroying it closes the descriptor and keeps the
// file. One thread at a time.
class WritableFile {
public:
  virtual ~WritableFile() = default;
  // Writes all of `bytes` or fails (a full disk, an unplugged drive); how much was written then is open.
  [[nodiscard]] virtual IOResult<void> write(std::span<const std::byte> bytes) = 0;
  // Returns once the content is on the disk and would survive a power cut.
  [[nodiscard]] virtual IOResult<void> sync() = 0;
  // Closes the descriptor, reporting what only turns up then (quota, network file systems). Once.
  [[nodiscard]] virtual IOResult<void> close() = 0;
};

enum class FileKind { regular, directory, link, other };

struct DirectoryEntry {
  std::string name;
  FileKind kind = FileKind::other;
};

// What distinguishes one file or folder from every other on this computer, whatever its path.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  bool operator==(const FileIdentity &) const = default;
};

// The file system as the way of a photo needs it. The program uses SystemFileSystem; tests wrap it to inject
// a full disk, a failed sync or a failed move. A link to a folder is followed, one to a file never. Any
// thread.
class FileSystem {
public:
  virtual ~FileSystem() = default;

  // A new, empty file; fails with EEXIST when the name is taken.
  [[nodiscard]] virtual IOResult<std::unique_ptr<WritableFile>>
  createFile(const std::filesystem::path &file) = 0;
  // The folder and whatever is missing above it; what was made is on the disk on return. A folder that exists
  // is success; something else under that name is ENOTDIR.
  [[nodiscard]] virtual IOResult<void> createDirectories(const std::filesystem::path &folder) = 0;
  // Moves a file within one file system. Fails with EEXIST, without any change, if `to` exists.
  [[nodiscard]] virtual IOResult<void> moveNoReplace(const std::filesystem::path &from,
                                                     const std::filesystem::path &to) = 0;
  // Moves a file within one file system over whatever file has the name `to`.
  [[nodiscard]] virtual IOResult<void> replace(const std::filesystem::path &from,
                                               const std::filesystem::path &to) = 0;
  // A second name for a file on the same file system; fails with EEXIST when `to` exists, and otherwise where
  // there are no second names.
  [[nodiscard]] virtual IOResult<void> link(const std::filesystem::path &from,
                                            const std::filesystem::path &to) = 0;
  [[nodiscard]] virtual IOResult<void> remove(const std::filesystem::path &file) = 0;
  // Returns once the folder's entries are on the disk.
  [[nodiscard]] virtual IOResult<void> syncDirectory(const std::filesystem::path &folder) = 0;
  // Everything directly inside the folder except "." and "..", in the file system's order.
  [[nodiscard]] virtual IOResult<std::vector<DirectoryEntry>> list(const std::filesystem::path &folder) = 0;
  // Bytes that user data may still fill on the volume that holds `folder`.
  [[nodiscard]] virtual IOResult<std::int64_t> availableBytes(const std::filesystem::path &folder) = 0;
};

class SystemFileSystem final : public FileSystem {
public:
  IOResult<std::unique_ptr<WritableFile>> createFile(const std::filesystem::path &file) override;
  IOResult<void> createDirectories(const std::filesystem::path &folder) override;
  IOResult<void> moveNoReplace(const std::filesystem::path &from, const std::filesystem::path &to) override;
  IOResult<void> replace(const std::filesystem::path &from, const std::filesystem::path &to) override;
  IOResult<void> link(const std::filesystem::path &from, const std::filesystem::path &to) override;
  IOResult<void> remove(const std::filesystem::path &file) override;
  IOResult<void> syncDirectory(const std::filesystem::path &folder) override;
  IOResult<std::vector<DirectoryEntry>> list(const std::filesystem::path &folder) override;
  IOResult<std::int64_t> availableBytes(const std::filesystem::path &folder) override;
};

enum class Links { refuse, follow }; // what to do when the last component of a path is a link

// A regular file open for reading. A device or a pipe is not opened (EINVAL), nor a link unless it is to be
// followed (ELOOP).
class ReadableFile {
public:
  [[nodiscard]] static IOResult<ReadableFile> open(const std::filesystem::path &file,
                                                   Links links = Links::refuse);
  // Up to `into.size()` bytes from where the last read ended; 0 at the end.
  [[nodiscard]] IOResult<std::size_t> read(std::span<std::byte> into);
  [[nodiscard]] IOResult<std::int64_t> size() const;
  // For handing the open file to another process.
  [[nodiscard]] const FileDescriptor &descriptor() const { return fd_; }

private:
  explicit ReadableFile(FileDescriptor fd) : fd_(std::move(fd)) {}
  FileDescriptor fd_;
};

// The size of a regular file (following no link).
[[nodiscard]] IOResult<std::int64_t> fileSize(const std::filesystem::path &file);
// What is under the name right now, following no link.
[[nodiscard]] IOResult<FileKind> fileKind(const std::filesystem::path &file);
// Identity of what the path leads to, links followed.
[[nodiscard]] IOResult<FileIdentity> fileIdentity(const std::filesystem::path &file);

// The whole content of a small file of our own, links followed.
[[nodiscard]] IOResult<std::string> readFile(const std::filesystem::path &file);
// Puts `content` under the name in one step: written aside, synced, moved over, folder synced. Mode 0600. A
// link stays and what it leads to is replaced.
[[nodiscard]] IOResult<void> replaceFile(const std::filesystem::path &name, std::string_view content);

// An advisory lock on a folder that lasts as long as the object. `shared` holders exclude an `exclusive` one;
// holders in the same program count like any other.
class DirectoryLock {
public:
  enum class Mode { shared, exclusive };

  // Takes the lock without waiting: fails with EWOULDBLOCK when another holder is in the way. A link to a
  // folder is not locked (ENOTDIR).
  [[nodiscard]] static IOResult<DirectoryLock> tryLock(const std::filesystem::path &folder, Mode mode);
  // The same, but waits until the others are out of the way.
  [[nodiscard]] static IOResult<DirectoryLock> lock(const std::filesystem::path &folder, Mode mode);
  // Turns an exclusive lock into a shared one.
  [[nodiscard]] IOResult<void> share();
  // The folder that is locked; a folder made anew under the same path is another one.
  [[nodiscard]] FileIdentity identity() const { return identity_; }

private:
  [[nodiscard]] static IOResult<DirectoryLock> take(const std::filesystem::path &folder, int operation);
  DirectoryLock(FileDescriptor fd, FileIdentity identity) : fd_(std::move(fd)), identity_(identity) {}
  FileDescriptor fd_;
  FileIdentity identity_;
};

} // namespace fennick
