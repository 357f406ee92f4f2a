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
// In the state's directory stand "<name>.lock", whose lock (flock) makes its holder the one that
// runs, "<name>.starting", held while one starts, and "<name>.socket" where it listens. The lock files stay:
// deleting one would let two programs each hold "the" lock. A program that dies leaves nothing behind that
// hinders the next. Main thread.
class InstanceGuard {
public:
  using Arguments = std::vector<std::string>;
  // The most bytes of a hand-over, arguments, quotes and commas together.
  static constexpr std::size_t kLargestHandOver = std::size_t{64} << 10;

  // Makes this program the running instance until the guard is destroyed; nullopt if another one is running.
  // Makes the directory when it is missing, for the user alone (mode 0700). Fails where the file system has
  // no locks or sockets, and when it cannot be written to. `name` has at most 70 bytes and no slash.
  [[nodiscard]] static IOResult<std::optional<InstanceGuard>> claim(const std::filesystem::path &directory,
                                                                    std::string_view name);

  // Gives the arguments to the program that runs. On success they are in its hands for as long as it lives.
  // Fails with ENOENT or ECONNREFUSED when none runs, with EACCES when it is another user's, with EAGAIN when
  // it takes nothing any more, with EMSGSIZE when they are too large and with EILSEQ when one is not UTF-8.
  // Never waits for the other.
  [[nodiscard]] static IOResult<void> handOver(const std::filesystem::path &directory, std::string_view name,
                                               const Arguments &arguments);

  InstanceGuard(InstanceGuard &&) noexcept = default;
  InstanceGuard &operator=(InstanceGuard &&) = delete;
  ~InstanceGuard();

  // Readable when there is something to receive.
  [[nodiscard]] int descriptor() const { return socket_.get(); }
  // What other launches have handed over since the last call, in order. What a program of another user sent,
  // and what is no list of texts, is dropped.
  [[nodiscard]] std::vector<Arguments> receive() const;

private:
  InstanceGuard(FileDescriptor directory, FileDescriptor lock, FileDescriptor socket, std::string socketName);

  FileDescriptor directory_;
  FileDescriptor lock_;
  FileDescriptor socket_;
  std::string socketName_;
};

} // namespace fennick
