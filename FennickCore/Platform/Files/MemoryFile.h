#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// Memory files that pass bytes between processes, and files mapped into memory.
namespace fennick {

// Creates a memory file with `content` that nobody can change afterwards.
[[nodiscard]] IOResult<FileDescriptor> sealedMemoryFile(std::string_view content);

// Returns the content of a sealed memory file from another process. Fails with EINVAL if it is not sealed
// against every change and with EFBIG if it is longer than `most`.
[[nodiscard]] IOResult<std::string> readSealedMemoryFile(const FileDescriptor &file, std::int64_t most);

// Maps a whole file into memory for the lifetime of the object. If someone truncates the file meanwhile,
// reading the lost part kills the process: use it only in processes that may die.
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
