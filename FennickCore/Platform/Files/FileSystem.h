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

// A file open for writing. Destroying it closes the descriptor and keeps the file. One thread at a time.
class WritableFile {
public:
  virtual ~WritableFile() = default;
  // Writes all of `bytes` or fails (a full disk, an unplugged drive). After a failure part of them may be
  // written.
  [[nodiscard]] virtual IOResult<void> write(std::span<const std::byte> bytes) = 0;
  // Returns once the content is on the disk and would survive a power cut.
  [[nodiscard]] virtual IOResult<void> sync() = 0;
  // Closes the descriptor and reports errors that only appear then (quota, network file systems). Call it
  // once.
  [[nodiscard]] virtual IOResult<void> close() = 0;
};

enum class FileKind { regular, directory, link, other };

struct DirectoryEntry {
  std::string name;
  FileKind kind = FileKind::other;
};

// Identifies a file or folder on this computer independently of its path.
struct FileIdentity {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  bool operator==(const FileIdentity &) const = default;
};

// The file operations on the path of a photo. The program uses SystemFileSystem; tests wrap it to inject a
// full disk, a failed sync or a failed move. Links to folders are followed, links to files never. Any thread.
class FileSystem {
public:
  virtual ~FileSystem() = default;

  // Creates an empty file. Fails with EEXIST if the name is taken.
  [[nodiscard]] virtual IOResult<std::unique_ptr<WritableFile>>
  createFile(const std::filesystem::path &file) = 0;
  // Creates the folder and all missing folders above it and syncs them. Succeeds if the folder exists; fails
  // with ENOTDIR if something else has its name.
  [[nodiscard]] virtual IOResult<void> createDirectories(const std::filesystem::path &folder) = 0;
  // Moves a file within one file system. Fails with EEXIST, without any change, if `to` exists.
  [[nodiscard]] virtual IOResult<void> moveNoReplace(const std::filesystem::path &from,
                                                     const std::filesystem::path &to) = 0;
  // Moves a file within one file system, replacing a file with the name `to`.
  [[nodiscard]] virtual IOResult<void> replace(const std::filesystem::path &from,
                                               const std::filesystem::path &to) = 0;
  // Creates a second name (hard link) for a file on the same file system. Fails with EEXIST if `to` exists,
  // and if the file system has no hard links.
  [[nodiscard]] virtual IOResult<void> link(const std::filesystem::path &from,
                                            const std::filesystem::path &to) = 0;
  [[nodiscard]] virtual IOResult<void> remove(const std::filesystem::path &file) = 0;
  // Returns once the folder's entries are on the disk.
  [[nodiscard]] virtual IOResult<void> syncDirectory(const std::filesystem::path &folder) = 0;
  // Returns everything directly inside the folder except "." and "..", in the file system's order.
  [[nodiscard]] virtual IOResult<std::vector<DirectoryEntry>> list(const std::filesystem::path &folder) = 0;
  // Returns how many bytes users may still write on the volume of `folder`.
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

// A regular file open for reading. Opening a device or a pipe fails with EINVAL, opening a link with ELOOP
// unless links are to be followed.
class ReadableFile {
public:
  [[nodiscard]] static IOResult<ReadableFile> open(const std::filesystem::path &file,
                                                   Links links = Links::refuse);
  // Reads up to `into.size()` bytes from where the last read ended. Returns 0 at the end.
  [[nodiscard]] IOResult<std::size_t> read(std::span<std::byte> into);
  [[nodiscard]] IOResult<std::int64_t> size() const;
  // For handing the open file to another process.
  [[nodiscard]] const FileDescriptor &descriptor() const { return fd_; }

private:
  explicit ReadableFile(FileDescriptor fd) : fd_(std::move(fd)) {}
  FileDescriptor fd_;
};

// Returns the size of a regular file; links are not followed.
[[nodiscard]] IOResult<std::int64_t> fileSize(const std::filesystem::path &file);
// Returns the kind of the entry itself; links are not followed.
[[nodiscard]] IOResult<FileKind> fileKind(const std::filesystem::path &file);
// Returns the identity of what the path leads to; links are followed.
[[nodiscard]] IOResult<FileIdentity> fileIdentity(const std::filesystem::path &file);

// Returns the content of a small file of this program; links are followed.
[[nodiscard]] IOResult<std::string> readFile(const std::filesystem::path &file);
// Replaces the content of a file atomically: writes it to a temporary file, syncs that, moves it over the
// name and syncs the folder. Mode 0600. If the name is a link, what it leads to is replaced.
[[nodiscard]] IOResult<void> replaceFile(const std::filesystem::path &name, std::string_view content);

// An advisory lock on a folder for the lifetime of the object. `shared` holders exclude an `exclusive` one,
// also within the same program.
class DirectoryLock {
public:
  enum class Mode { shared, exclusive };

  // Takes the lock without waiting. Fails with EWOULDBLOCK if another holder excludes it, and with ENOTDIR
  // for a link to a folder.
  [[nodiscard]] static IOResult<DirectoryLock> tryLock(const std::filesystem::path &folder, Mode mode);
  // Takes the lock and waits until no other holder excludes it.
  [[nodiscard]] static IOResult<DirectoryLock> lock(const std::filesystem::path &folder, Mode mode);
  // Turns an exclusive lock into a shared one.
  [[nodiscard]] IOResult<void> share();
  // The folder that is locked. A folder created again under the same path is a different one.
  [[nodiscard]] FileIdentity identity() const { return identity_; }

private:
  [[nodiscard]] static IOResult<DirectoryLock> take(const std::filesystem::path &folder, int operation);
  DirectoryLock(FileDescriptor fd, FileIdentity identity) : fd_(std::move(fd)), identity_(identity) {}
  FileDescriptor fd_;
  FileIdentity identity_;
};

} // namespace fennick
