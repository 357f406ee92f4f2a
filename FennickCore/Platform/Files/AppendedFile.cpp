#include "FennickCore/Platform/Files/AppendedFile.h"

#include "FennickCore/Platform/System/SystemCalls.h"

#include <fcntl.h>
#include <unistd.h>

namespace fennick {

IOResult<AppendedFile> AppendedFile::open(const std::filesystem::path &file) {
  FileDescriptor fd(::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!fd.isOpen())
    return lastFailure();
  return AppendedFile(std::move(fd));
}

IOResult<void> AppendedFile::append(std::string_view text) {
  const auto written = retried([&] { return ::write(fd_.get(), text.data(), text.size()); });
  if (written < 0)
    return lastFailure();
  return static_cast<std::size_t>(written) == text.size() ? IOResult<void>() : failure(ENOSPC);
}

} // namespace fennick
