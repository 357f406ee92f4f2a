#pragma once

#include <expected>
#include <system_error>

namespace fennick {

// The result of a system call, or the error code of the system.
template <typename T>
using IOResult = std::expected<T, std::error_code>;

// Owns a file descriptor and closes it on destruction. Movable, not copyable; -1 if empty.
class FileDescriptor {
public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fd_(fd) {}
  FileDescriptor(FileDescriptor &&other) noexcept;
  FileDescriptor &operator=(FileDescriptor &&other) noexcept;
  ~FileDescriptor();

  [[nodiscard]] int get() const { return fd_; }
  [[nodiscard]] bool isOpen() const { return fd_ >= 0; }
  // Gives the descriptor to the caller, who closes it.
  [[nodiscard]] int release();
  void reset();

private:
  int fd_ = -1;
};

} // namespace fennick
