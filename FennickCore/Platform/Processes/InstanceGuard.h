#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fennick {

// Ensures a single running instance per state directory and forwards the arguments of later launches to it.
// The directory contains "<name>.lock", whose lock (flock) makes its holder the running instance,
// "<name>.starting", locked during a start, and "<name>.socket", on which the instance listens. The lock
// files are never deleted: otherwise two programs could each hold "the" lock. A program that dies does not
// block the next one. Main thread.
class InstanceGuard {
public:
  using Arguments = std::vector<std::string>;
  // The most bytes of a hand-over, arguments, quotes and commas together.
  static constexpr std::size_t kLargestHandOver = std::size_t{64} << 10;

  // Makes this program the running instance until the guard is destroyed. Returns nullopt if another one is
  // running. Creates the directory if it is missing, for the user alone (mode 0700). Fails if the file system
  // has no locks or sockets or the directory is not writable. `name` has at most 70 bytes and no slash.
  [[nodiscard]] static IOResult<std::optional<InstanceGuard>> claim(const std::filesystem::path &directory,
                                                                    std::string_view name);

  // Sends the arguments to the running instance. On success the instance receives them unless it dies. Fails
  // with ENOENT or ECONNREFUSED if none runs, EACCES if it belongs to another user, EAGAIN if its queue is
  // full, EMSGSIZE if they are too large and EILSEQ if one is not UTF-8. Never waits for the other program.
  [[nodiscard]] static IOResult<void> handOver(const std::filesystem::path &directory, std::string_view name,
                                               const Arguments &arguments);

  InstanceGuard(InstanceGuard &&) noexcept = default;
  InstanceGuard &operator=(InstanceGuard &&) = delete;
  ~InstanceGuard();

  // Readable when arguments have arrived.
  [[nodiscard]] int descriptor() const { return socket_.get(); }
  // Returns the arguments that other launches sent since the last call, in order. Messages of other users'
  // programs and malformed ones are dropped.
  [[nodiscard]] std::vector<Arguments> receive() const;

private:
  InstanceGuard(FileDescriptor directory, FileDescriptor lock, FileDescriptor socket, std::string socketName);

  FileDescriptor directory_;
  FileDescriptor lock_;
  FileDescriptor socket_;
  std::string socketName_;
};

} // namespace fennick
