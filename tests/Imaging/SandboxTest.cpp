#include "FennickCore/Imaging/Picture/Sandbox.h"

#include "FennickCore/Platform/Files/FileSystem.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <functional>

namespace fennick::picture {
namespace {

constexpr int kSurvived = 0;
constexpr int kRefused = 7;
constexpr int kNoSandbox = 8;

// Returns the exit status of a process that called `entry`, which returns whether it worked.
int statusOf(const std::function<bool()> &entry) {
  const pid_t child = ::fork();
  if (child == 0)
    ::_exit(entry() ? kSurvived : kRefused);
  int status = 0;
  ::waitpid(child, &status, 0);
  return status;
}

// The same, in a process that locked itself down before.
int statusAfter(const std::function<bool()> &entry) {
  return statusOf([&] {
    if (!limitResources() || !lockDown())
      ::_exit(kNoSandbox);
    return entry();
  });
}

bool wasKilled(int status) { return WIFSIGNALED(status) && WTERMSIG(status) == SIGSYS; }
bool wasRefused(int status) { return WIFEXITED(status) && WEXITSTATUS(status) == kRefused; }

TEST(SandboxTest, DeniesAccessToFiles) {
  // Uses the calls directly.
  EXPECT_TRUE(wasRefused(statusAfter([] { return ::open("/etc/passwd", O_RDONLY | O_CLOEXEC) >= 0; })));
  EXPECT_TRUE(wasRefused(statusAfter([] { return ::open("/tmp", O_TMPFILE | O_WRONLY, 0600) >= 0; })));
  EXPECT_TRUE(wasRefused(statusAfter([] { return ::access("/etc/passwd", F_OK) == 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::unlink("/tmp/there-is-no-such-file") == 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::mkdir("/tmp/no-such-folder", 0700) == 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::chdir("/") == 0; })));
}

TEST(SandboxTest, DeniesNetworkAndOtherProcesses) {
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::syscall(SYS_fork) >= 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::kill(::getppid(), 0) == 0; })));
  // Limits and signals through other calls.
  EXPECT_TRUE(wasKilled(statusAfter([] {
    const rlimit none{};
    return ::prlimit(::getppid(), RLIMIT_NOFILE, &none, nullptr) == 0;
  })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::fcntl(0, F_SETOWN, ::getpid()) == 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] { return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0; })));
  EXPECT_TRUE(wasKilled(statusAfter([] {
    const std::array<char *, 1> none{};
    return ::execve("/bin/true", none.data(), none.data()) == 0;
  })));
}

TEST(SandboxTest, DeniesExecutableMemory) {
  EXPECT_TRUE(wasKilled(statusAfter([] {
    return ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) !=
           MAP_FAILED;
  })));
  void *page = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  EXPECT_TRUE(wasKilled(statusAfter([&] { return ::mprotect(page, 4096, PROT_READ | PROT_EXEC) == 0; })));
  ::munmap(page, 4096);
}

TEST(SandboxTest, LimitsMemoryAndDescriptors) {
  if (kSanitized)
    GTEST_SKIP() << "no limits in this build";
  EXPECT_TRUE(wasRefused(statusAfter([] {
    return ::mmap(nullptr, std::size_t{5} << 30, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1,
                  0) != MAP_FAILED;
  })));
  EXPECT_TRUE(wasRefused(statusAfter([] {
    int made = 0;
    while (made < 20 && ::memfd_create("picture", 0) >= 0)
      ++made;
    return made == 20;
  })));
}

TEST(SandboxTest, OffersItselfToTheOutOfMemoryKiller) {
  EXPECT_EQ(statusOf([] {
              offerToOutOfMemoryKiller();
              return std::atoi(readFile("/proc/self/oom_score_adj").value_or("").c_str()) >= 500;
            }),
            kSurvived);
}

} // namespace
} // namespace fennick::picture
