#pragma once

#include "FennickCore/Platform/FileSystem.h"

#include <cerrno>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <functional>
#include <system_error>

// What the files of this room share when they call the system. Included by nothing outside it.
namespace fennick {

[[nodiscard]] inline std::unexpected<std::error_code> failure(int error) {
  return std::unexpected(std::error_code(error, std::generic_category()));
}
// The error of the call that failed just now.
[[nodiscard]] inline std::unexpected<std::error_code> lastFailure() { return failure(errno); }

[[nodiscard]] inline IOResult<void> checked(int status) {
  if (status != 0)
    return lastFailure();
  return {};
}

// The result of `call`, which is made again for as long as a signal interrupts it.
template <typename Call>
auto retried(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

[[nodiscard]] FileKind kindFromMode(std::uint32_t mode);
[[nodiscard]] IOResult<FileDescriptor> openDirectory(const std::filesystem::path &folder,
                                                     Links links = Links::follow);
// Calls `visit` for everything directly inside the folder except "." and "..", with the open folder, the name
// and what it is.
[[nodiscard]] IOResult<void>
visitFolder(const std::filesystem::path &folder, Links links,
            const std::function<void(int folder, const char *name, FileKind kind)> &visit);

} // namespace fennick
