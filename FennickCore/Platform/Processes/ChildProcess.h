#pragma once

#include "FennickCore/Platform/System/FileDescriptor.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace fennick {

// A child process, which is killed and waited for when the object is destroyed. Movable. One thread at a
// time.
class ChildProcess {
public:
  // The number of the handed-over descriptor in the child.
  static constexpr int kHandedDescriptor = 3;

  // Starts `program` with `arguments`. It inherits only `handed` (as kHandedDescriptor) and the variables in
  // `environment` ("NAME=value"); its standard input, output and error are /dev/null.
  [[nodiscard]] static IOResult<ChildProcess> start(const std::filesystem::path &program,
                                                    const std::vector<std::string> &arguments,
                                                    const std::vector<std::string> &environment,
                                                    const FileDescriptor &handed);
  ChildProcess(ChildProcess &&other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
  ChildProcess &operator=(ChildProcess &&other) noexcept;
  ~ChildProcess() { kill(); }

  // Kills the process and waits for its end. Returns a description of how it ended if it had ended by itself.
  std::string kill();

private:
  explicit ChildProcess(int pid) : pid_(pid) {}
  int pid_ = -1;
};

} // namespace fennick
