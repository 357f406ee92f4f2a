#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace fennick {

// A process that we started; ended and waited for with its owner. Movable. One thread at a time.
class ChildProcess {
public:
  // The descriptor under which the child finds what was handed to it.
  static constexpr int kHandedDescriptor = 3;

  // Starts `program` with `arguments`. It inherits nothing but `handed` (as kHandedDescriptor) and the
  // variables in `environment` ("NAME=value"); its standard input, output and error are empty.
  [[nodiscard]] static IOResult<ChildProcess> start(const std::filesystem::path &program,
                                                    const std::vector<std::string> &arguments,
                                                    const std::vector<std::string> &environment,
                                                    const FileDescriptor &handed);
  ChildProcess(ChildProcess &&other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
  ChildProcess &operator=(ChildProcess &&other) noexcept;
  ~ChildProcess() { kill(); }

  // Ends the process at once and waits until it is gone; what it died of, in words, when it had ended by
  // itself.
  std::string kill();

private:
  explicit ChildProcess(int pid) : pid_(pid) {}
  int pid_ = -1;
};

} // namespace fennick
