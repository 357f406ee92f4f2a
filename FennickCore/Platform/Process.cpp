#include "FennickCore/Platform/Process.h"

#include <malloc.h>
#include <unistd.h>

#include <csignal>
#include <tuple>

namespace fennick {

void prepareProcess() {
  std::ignore = std::signal(SIGPIPE, SIG_IGN);
  // A fixed threshold: by default the allocator raises it when a large block is freed and keeps such blocks
  // from then on, once for every thread.
  constexpr int kLargeBlock = 128 * 1024;
  ::mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  ::mallopt(M_ARENA_MAX, 2);
}

bool standardOutputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

} // namespace fennick
