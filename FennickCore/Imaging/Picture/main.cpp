// The imaging process: the only place that parses pictures. The programs start it with one end of a socket;
// it is not for users.

#include "FennickCore/Imaging/Picture/Worker.h"
#include "FennickCore/Platform/Processes/ChildProcess.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <tuple>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
// The leak check at the end would inspect other processes, which the sandbox forbids.
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
  ::_exit(status); // skips destructors of libraries, whose threads may still run
}
