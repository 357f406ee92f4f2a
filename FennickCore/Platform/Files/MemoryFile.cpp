#include "FennickCore/Platform/Files/MemoryFile.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace fennick {

namespace {

constexpr int kSeals = F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE;

// Not executable: some systems demand this flag, and kernels before 6.3 do not know it.
FileDescriptor emptyMemoryFile() {
  constexpr unsigned kNoExecSeal = 0x8;
  constexpr unsigned kFlags = MFD_CLOEXEC | MFD_ALLOW_SEALING;
  const int file = ::memfd_create("picture", kFlags | kNoExecSeal);
  return FileDescriptor(file >= 0 ? file : ::memfd_create("picture", kFlags));
}

IOResult<std::int64_t> sizeOf(const FileDescriptor &file) {
  const off_t size = ::lseek(file.get(), 0, SEEK_END); // the sandbox permits lseek but not fstat
  if (size < 0)
    return lastFailure();
  return size;
}

} // namespace

IOResult<FileDescriptor> sealedMemoryFile(std::string_view content) {
  FileDescriptor file = emptyMemoryFile();
  if (!file.isOpen())
    return lastFailure();
  while (!content.empty()) {
    const ssize_t count = retried([&] { return ::write(file.get(), content.data(), content.size()); });
    if (count < 0)
      return lastFailure();
    content.remove_prefix(static_cast<std::size_t>(count));
  }
  if (::fcntl(file.get(), F_ADD_SEALS, kSeals) != 0)
    return lastFailure();
  return file;
}

IOResult<std::string> readSealedMemoryFile(const FileDescriptor &file, std::int64_t most) {
  const int seals = ::fcntl(file.get(), F_GET_SEALS);
  if (seals < 0 || (seals & kSeals) != kSeals)
    return failure(EINVAL);
  const auto size = sizeOf(file);
  if (!size)
    return failure(size.error().value());
  if (*size > most)
    return failure(EFBIG);
  std::string content(static_cast<std::size_t>(*size), '\0');
  for (std::size_t done = 0; done < content.size();) {
    const ssize_t count = retried([&] {
      return ::pread(file.get(), content.data() + done, content.size() - done, static_cast<off_t>(done));
    });
    if (count <= 0)
      return failure(count == 0 ? EIO : errno);
    done += static_cast<std::size_t>(count);
  }
  return content;
}

IOResult<MappedFile> MappedFile::map(const FileDescriptor &file) {
  const auto size = sizeOf(file);
  if (!size)
    return failure(size.error().value());
  if (*size == 0)
    return MappedFile(std::span<const std::byte>());
  void *start = ::mmap(nullptr, static_cast<std::size_t>(*size), PROT_READ, MAP_PRIVATE, file.get(), 0);
  if (start == MAP_FAILED) // NOLINT(performance-no-int-to-ptr): the system's own constant
    return lastFailure();
  return MappedFile({static_cast<const std::byte *>(start), static_cast<std::size_t>(*size)});
}

MappedFile::MappedFile(MappedFile &&other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}

MappedFile::~MappedFile() {
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): as mmap gave it
  auto *start = const_cast<std::byte *>(bytes_.data());
  if (!bytes_.empty())
    ::munmap(start, bytes_.size());
}

} // namespace fennick
