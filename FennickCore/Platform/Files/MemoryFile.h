#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Bytes handed from one process to another, and files looked at without being copied.
namespace fennick {

// A memory file that holds `content` and can never be changed again, by anyone.
[[nodiscard]] IOResult<FileDescriptor> sealedMemoryFile(std::string_view content);

// The content of a sealed memory file that another process made. EINVAL when it is not sealed against every
// change, EFBIG when it is longer than `most`.
[[nodiscard]] IOResult<std::string> readSealedMemoryFile(const FileDescriptor &file, std::int64_t most);

// A whole file in the address space, for as long as the object lives. A file that someone cuts short
// meanwhile ends the process that touches the lost part: only for processes that are there to die.
class MappedFile {
public:
  [[nodiscard]] static IOResult<MappedFile> map(const FileDescriptor &file);
  MappedFile(MappedFile &&other) noexcept;
  MappedFile &operator=(MappedFile &&) = delete;
  ~MappedFile();

  [[nodiscard]] std::span<const std::byte> bytes() const { return bytes_; }

private:
  explicit MappedFile(std::span<const std::byte> bytes) : bytes_(bytes) {}
  std::span<const std::byte> bytes_;
};

} // namespace fennick
