#pragma once

#include "FennickCore/Platform/Files/FileSystem.h"
#include "FennickCore/Platform/Threads/Mutex.h"

#include <functional>
#include <map>
#include <optional>

namespace fennick::test {

// The system's file system with injected failures. Any thread.
class FaultyFileSystem final : public FileSystem {
public:
  enum class Operation {
    createFile,
    createDirectories,
    write,
    sync,
    close,
    moveNoReplace,
    replace,
    link,
    remove,
    syncDirectory,
    list,
    availableBytes,
  };

  // Lets the next call of `operation` fail with `error` and do nothing else; a failing close still closes.
  void failNext(Operation operation, int error);
  // Lets every later call fail until `mend`.
  void failAlways(Operation operation, int error);
  void mend(Operation operation);
  // Runs `action` at the start of every later call, without a lock held, to simulate another program.
  void before(Operation operation, std::function<void()> action);
  // Simulates a crash: from the `change`-th changing call on, counted from 1, every changing call fails with
  // EIO and has no effect. Changing calls are all but `list` and `availableBytes`. A close still closes the
  // descriptor.
  void dieAt(int change);
  [[nodiscard]] bool died() const;
  void setAvailableBytes(std::optional<std::int64_t> bytes);
  // The number of calls, including failed ones.
  [[nodiscard]] int calls(Operation operation) const;

  IOResult<std::unique_ptr<WritableFile>> createFile(const std::filesystem::path &file) override;
  IOResult<void> createDirectories(const std::filesystem::path &folder) override;
  IOResult<void> moveNoReplace(const std::filesystem::path &from, const std::filesystem::path &to) override;
  IOResult<void> replace(const std::filesystem::path &from, const std::filesystem::path &to) override;
  IOResult<void> link(const std::filesystem::path &from, const std::filesystem::path &to) override;
  IOResult<void> remove(const std::filesystem::path &file) override;
  IOResult<void> syncDirectory(const std::filesystem::path &folder) override;
  IOResult<std::vector<DirectoryEntry>> list(const std::filesystem::path &folder) override;
  IOResult<std::int64_t> availableBytes(const std::filesystem::path &folder) override;

private:
  class File;
  struct Switch {
    int calls = 0;
    int failAt = 0; // the number of the call that fails; 0 for none
    bool always = false;
    int error = 0;
    std::function<void()> before;
  };

  // Counts a call and returns the error if it has to fail.
  IOResult<void> enter(Operation operation);
  bool isDead(Operation operation) REQUIRES(lock_);
  template <typename Call>
  auto run(Operation operation, Call call) -> decltype(call()) {
    if (const auto entered = enter(operation); !entered)
      return std::unexpected(entered.error());
    return call();
  }

  SystemFileSystem system_;
  mutable Mutex lock_;
  std::map<Operation, Switch> switches_ GUARDED_BY(lock_);
  std::optional<std::int64_t> availableBytes_ GUARDED_BY(lock_);
  int changes_ GUARDED_BY(lock_) = 0;
  int deathAt_ GUARDED_BY(lock_) = 0; // the number of the change; 0 for none
};

} // namespace fennick::test
