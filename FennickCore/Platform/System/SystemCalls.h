#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"

#include <cerrno>
#include <expected>
#include <system_error>

// Turns the results of system calls into IOResult. For the folders of Platform only.
namespace fennick {

[[nodiscard]] inline std::unexpected<std::error_code> failure(int error) {
  return std::unexpected(std::error_code(error, std::generic_category()));
}
// Returns the error of the last call on this thread, as `errno` has it.
[[nodiscard]] inline std::unexpected<std::error_code> lastFailure() { return failure(errno); }

[[nodiscard]] inline IOResult<void> checked(int status) {
  if (status != 0)
    return lastFailure();
  return {};
}

// Repeats `call` for as long as a signal interrupts it and returns its result.
template <typename Call>
auto retried(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR)
    result = call();
  return result;
}

} // namespace fennick
