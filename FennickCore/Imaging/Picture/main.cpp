// The imaging process: the only place where pictures are looked into. It is started by the programs with one
// end of a socket; a person has no use for it.

#include "FennickCore/Imaging/Picture/Worker.h"
#include "FennickCore/Platform/Processes/ChildProcess.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <tuple>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
// Its search for leaks at the end looks at other processes, which this one may not.
extern "C" const char *__asan_default_options() { return "detect_leaks=0"; } // NOLINT
#endif
#endif

int main() {
  using fennick::ChildProcess;
  if (::fcntl(ChildProcess::kHandedDescriptor, F_GETFD) < 0) {
    std::ignore = std::fputs("tevrin-imaging is started by Tevrin itself\n", stderr);
    return EXIT_FAILURE;
  }
  std::ignore = ::fcntl(ChildProcess::kHandedDescriptor, F_SETFD, FD_CLOEXEC);
  const int status = fennick::picture::serve(
      fennick::MessageSocket(fennick::FileDescriptor(ChildProcess::kHandedDescriptor)));
  ::_exit(status); // libraries' threads and leftovers go with the process
}
