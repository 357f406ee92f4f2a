#include "FennickCore/Imaging/Picture/Sandbox.h"

#include "FennickCore/Imaging/ImagingWire.h"
#include "FennickCore/Platform/Files/FileSystem.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/landlock.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>

namespace fennick::picture {

namespace {

// 100 million pixels of 16-bit colour with transparency take 800 MB, twice during a conversion; the rest is
// for libraries and the mapped file.
constexpr rlim_t kMostMemory = rlim_t{4} << 30;

// The empty standard descriptors, the socket, a picture, a result and a few more: memory files do not count
// as memory, so their number limits what can be allocated.
constexpr rlim_t kMostDescriptors = 12;

// Added to the process's badness for the kernel's out-of-memory killer: half of the computer's memory. The
// maximum is 1000, with which even an idle decoder would be killed before a program that has taken all
// memory.
constexpr int kOutOfMemoryScore = 500;

using Outcome = std::expected<void, std::string>;

std::unexpected<std::string> failure(const char *what, int error) {
  return std::unexpected(fmt::format("{}: {}", what, std::strerror(error)));
}

Outcome limit(__rlimit_resource resource, rlim_t value) {
  const rlimit limits{.rlim_cur = value, .rlim_max = value};
  if (::setrlimit(resource, &limits) != 0)
    return failure("setrlimit", errno);
  return {};
}

// Denies all paths of the file system, TCP, and signals to other processes, as far as this kernel supports
// it.
Outcome restrictPaths() {
  const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
  if (version < 1)
    return {}; // without Landlock, the filter alone denies access to files
  // The number of rights and the size of the record, by version.
  struct Known {
    unsigned rights;
    std::size_t bytes;
  };
  static constexpr std::array<Known, 6> kKnown{Known{13, 8},  Known{14, 8},  Known{15, 8},
                                               Known{15, 16}, Known{16, 16}, Known{16, 24}};
  const Known known = kKnown.at(static_cast<std::size_t>(std::min(version, std::ssize(kKnown))) - 1);
  struct {
    std::uint64_t files;
    std::uint64_t network; // since version 4: bind and connect
    std::uint64_t scopes;  // since version 6: abstract sockets and signals
  } attributes{.files = (std::uint64_t{1} << known.rights) - 1, .network = 3, .scopes = 3};
  const FileDescriptor ruleset(
      static_cast<int>(::syscall(SYS_landlock_create_ruleset, &attributes, known.bytes, 0)));
  if (!ruleset.isOpen() || ::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) != 0)
    return failure("landlock", errno);
  return {};
}

// Collects the allow-list; the first failure is kept.
class Filter {
public:
  Filter() : context_(::seccomp_init(SCMP_ACT_KILL_PROCESS), &::seccomp_release) {}

  void allow(std::initializer_list<int> calls) {
    for (const int call : calls)
      add(SCMP_ACT_ALLOW, call);
  }
  void refuse(int error, std::initializer_list<int> calls) {
    for (const int call : calls)
      add(SCMP_ACT_ERRNO(static_cast<std::uint16_t>(error)), call);
  }
  void allowIf(int call, std::initializer_list<scmp_arg_cmp> conditions) {
    if (failed_ == 0 && context_)
      failed_ = ::seccomp_rule_add_array(context_.get(), SCMP_ACT_ALLOW, call,
                                         static_cast<unsigned>(conditions.size()), conditions.begin());
  }
  Outcome load() {
    if (!context_)
      return failure("seccomp", ENOMEM);
    if (failed_ == 0)
      failed_ = ::seccomp_attr_set(context_.get(), SCMP_FLTATR_CTL_NNP, 0); // set before, checked there
    if (failed_ == 0)
      failed_ = ::seccomp_load(context_.get());
    return failed_ == 0 ? Outcome{} : Outcome{failure("seccomp", -failed_)};
  }

private:
  void add(std::uint32_t action, int call) {
    if (failed_ == 0 && context_)
      failed_ = ::seccomp_rule_add(context_.get(), action, call, 0);
  }

  std::unique_ptr<void, decltype(&::seccomp_release)> context_;
  int failed_ = 0;
};

scmp_arg_cmp argument(unsigned index, scmp_compare comparison, std::uint64_t a, std::uint64_t b = 0) {
  return {.arg = index, .op = comparison, .datum_a = a, .datum_b = b};
}

void allowMemory(Filter &filter) {
  filter.allow({SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise), SCMP_SYS(brk)});
  // Memory, but never executable memory.
  for (const int call : {SCMP_SYS(mmap), SCMP_SYS(mprotect)})
    filter.allowIf(call, {argument(2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)});
}

void allowThreads(Filter &filter) {
  filter.allow({SCMP_SYS(futex), SCMP_SYS(set_robust_list), SCMP_SYS(rseq), SCMP_SYS(rt_sigprocmask),
                SCMP_SYS(rt_sigaction), SCMP_SYS(rt_sigreturn), SCMP_SYS(sched_yield),
                SCMP_SYS(sched_getaffinity), SCMP_SYS(getpid), SCMP_SYS(gettid), SCMP_SYS(exit),
                SCMP_SYS(exit_group)});
  filter.allowIf(SCMP_SYS(clone), {argument(0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD)});
  filter.refuse(ENOSYS, {SCMP_SYS(clone3)}); // the filter cannot see its flags: use clone
  filter.allowIf(SCMP_SYS(prctl), {argument(0, SCMP_CMP_EQ, PR_SET_NAME)});
  // A crash may end this process by its own abort, and it can signal no other process.
  filter.allowIf(SCMP_SYS(tgkill), {argument(0, SCMP_CMP_EQ, static_cast<std::uint64_t>(::getpid()))});
}

void allowDescriptors(Filter &filter) {
  filter.allow({SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(write), SCMP_SYS(close), SCMP_SYS(dup),
                SCMP_SYS(lseek), SCMP_SYS(fstat), SCMP_SYS(poll), SCMP_SYS(ppoll), SCMP_SYS(recvmsg),
                SCMP_SYS(sendmsg), SCMP_SYS(memfd_create), SCMP_SYS(ftruncate)});
  // Excludes commands that make the kernel send signals.
  for (const int command : {F_GETFD, F_SETFD, F_GETFL, F_DUPFD_CLOEXEC, F_ADD_SEALS, F_GET_SEALS})
    filter.allowIf(SCMP_SYS(fcntl), {argument(1, SCMP_CMP_EQ, static_cast<std::uint64_t>(command))});
  filter.refuse(EACCES, {SCMP_SYS(open), SCMP_SYS(openat), SCMP_SYS(openat2), SCMP_SYS(stat),
                         SCMP_SYS(newfstatat), SCMP_SYS(lstat), SCMP_SYS(access), SCMP_SYS(faccessat),
                         SCMP_SYS(readlink), SCMP_SYS(readlinkat), SCMP_SYS(statx), SCMP_SYS(getcwd)});
  filter.refuse(ENOTTY, {SCMP_SYS(ioctl)});
}

void allowRest(Filter &filter) {
  filter.allow({SCMP_SYS(clock_gettime), SCMP_SYS(clock_getres), SCMP_SYS(gettimeofday), SCMP_SYS(time),
                SCMP_SYS(clock_nanosleep), SCMP_SYS(nanosleep), SCMP_SYS(getrandom), SCMP_SYS(getrusage),
                SCMP_SYS(sysinfo), SCMP_SYS(uname), SCMP_SYS(setitimer)});
  // It may read its own limits only.
  filter.allowIf(SCMP_SYS(prlimit64), {argument(0, SCMP_CMP_EQ, 0), argument(2, SCMP_CMP_EQ, 0)});
  // The HEIC encoder asks for the placement of threads and memory, and works without an answer.
  filter.refuse(EPERM, {SCMP_SYS(get_mempolicy), SCMP_SYS(set_mempolicy), SCMP_SYS(mbind),
                        SCMP_SYS(sched_setaffinity), SCMP_SYS(sched_setscheduler), SCMP_SYS(setpriority)});
  if (kSanitized)
    filter.allow(
        {SCMP_SYS(sigaltstack), SCMP_SYS(prctl), SCMP_SYS(mincore), SCMP_SYS(arch_prctl), SCMP_SYS(pipe2)});
}

} // namespace

void offerToOutOfMemoryKiller() {
  const FileDescriptor file(::open("/proc/self/oom_score_adj", O_RDWR | O_CLOEXEC));
  std::array<char, 16> current{};
  if (!file.isOpen() || ::pread(file.get(), current.data(), current.size() - 1, 0) <= 0 ||
      std::atoi(current.data()) >= kOutOfMemoryScore)
    return;
  const std::string score = std::to_string(kOutOfMemoryScore);
  if (::pwrite(file.get(), score.data(), score.size(), 0) < 0)
    return; // some containers forbid changing it
}

Outcome limitResources() {
  if (auto limited = limit(RLIMIT_CORE, 0); !limited)
    return limited;
  if (auto limited = limit(RLIMIT_FSIZE, rlim_t{wire::kMostResultBytes}); !limited || kSanitized)
    return limited;
  if (auto limited = limit(RLIMIT_NOFILE, kMostDescriptors); !limited)
    return limited;
  return limit(RLIMIT_AS, kMostMemory);
}

Outcome lockDown() {
  if (::prctl(PR_SET_DUMPABLE, 0) != 0 || ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
    return failure("prctl", errno);
  if (auto restricted = restrictPaths(); !restricted)
    return restricted;
  Filter filter;
  allowMemory(filter);
  allowThreads(filter);
  allowDescriptors(filter);
  allowRest(filter);
  return filter.load();
}

} // namespace fennick::picture
