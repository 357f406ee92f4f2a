#include "FennickCore/Platform/Processes/ChildProcess.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): kill and sigset_t are POSIX
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace fennick {

namespace {

std::vector<char *> pointers(const std::vector<std::string> &texts, const std::string *first = nullptr) {
  std::vector<char *> result;
  // posix_spawn does not write through these.
  const auto add = [&](const std::string &text) {
    result.push_back(const_cast<char *>(text.c_str())); // NOLINT(cppcoreguidelines-pro-type-const-cast)
  };
  if (first != nullptr)
    add(*first);
  for (const auto &text : texts)
    add(text);
  result.push_back(nullptr);
  return result;
}

// What posix_spawn does to descriptors and signals between fork and exec.
class SpawnSettings {
public:
  explicit SpawnSettings(int handed) {
    ::posix_spawn_file_actions_init(&actions_);
    ::posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDWR, 0);
    ::posix_spawn_file_actions_adddup2(&actions_, 0, 1);
    ::posix_spawn_file_actions_adddup2(&actions_, 0, 2);
    ::posix_spawn_file_actions_adddup2(&actions_, handed, ChildProcess::kHandedDescriptor);
    ::posix_spawn_file_actions_addclosefrom_np(&actions_, ChildProcess::kHandedDescriptor + 1);
    ::posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    // Its own process group: Ctrl-C in a terminal is for the parent, which ends the child.
    ::posix_spawnattr_setflags(&attributes_,
                               POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&actions_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  SpawnSettings(const SpawnSettings &) = delete;
  SpawnSettings &operator=(const SpawnSettings &) = delete;

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

} // namespace

IOResult<ChildProcess> ChildProcess::start(const std::filesystem::path &program,
                                           const std::vector<std::string> &arguments,
                                           const std::vector<std::string> &environment,
                                           const FileDescriptor &handed) {
  // dup2 onto the same number would leave close-on-exec set, so a copy with a higher number is handed over.
  const FileDescriptor copy(
      ::fcntl(handed.get(), F_DUPFD_CLOEXEC, kHandedDescriptor + 1)); // NOLINT(misc-const-correctness)
  if (!copy.isOpen())
    return std::unexpected(std::error_code(errno, std::generic_category()));
  const SpawnSettings settings(copy.get());
  const std::string name = program.string();
  pid_t pid = -1;
  const int error = ::posix_spawn(&pid, name.c_str(), &settings.actions_, &settings.attributes_,
                                  pointers(arguments, &name).data(), pointers(environment).data());
  if (error != 0)
    return std::unexpected(std::error_code(error, std::generic_category()));
  return ChildProcess(pid);
}

ChildProcess &ChildProcess::operator=(ChildProcess &&other) noexcept {
  if (this != &other) {
    kill();
    pid_ = std::exchange(other.pid_, -1);
  }
  return *this;
}

std::string ChildProcess::kill() {
  if (pid_ < 0)
    return {};
  ::kill(pid_, SIGKILL);
  int status = 0;
  while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
  }
  pid_ = -1;
  if (WIFEXITED(status))
    return fmt::format("ended with status {}", WEXITSTATUS(status));
  return fmt::format("ended by signal {}", WTERMSIG(status));
}

} // namespace fennick
