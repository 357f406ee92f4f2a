#include "FennickCore/Platform/Processes/Process.h"

#include <glib.h>
#include <malloc.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): sigaction and its like are POSIX
#include <unistd.h>

#include <csignal>
#include <tuple>

namespace fennick {

void prepareProcess() {
  std::ignore = std::signal(SIGPIPE, SIG_IGN);
  // A fixed threshold: by default the allocator raises it when a large block is freed and then keeps such
  // blocks, in every thread.
  constexpr int kLargeBlock = 128 * 1024;
  ::mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  ::mallopt(M_ARENA_MAX, 2);
}

void leaveWorkingDirectory() {
  if (::chdir(::g_get_home_dir()) != 0)
    std::ignore = ::chdir("/");
}

bool standardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

void takeDefaultAction(int signal) {
  struct sigaction usual{};
  struct sigaction before{};
  usual.sa_handler = SIG_DFL; // NOLINT(cppcoreguidelines-pro-type-union-access): how POSIX declares it
  sigset_t only;
  sigset_t blocked;
  ::sigemptyset(&only);
  ::sigaddset(&only, signal);
  ::sigaction(signal, &usual, &before);
  std::ignore = ::raise(signal);
  ::pthread_sigmask(SIG_UNBLOCK, &only, &blocked);
  ::pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
  ::sigaction(signal, &before, nullptr);
}

} // namespace fennick
