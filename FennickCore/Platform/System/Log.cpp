#include "FennickCore/Platform/System/Log.h"

#include "FennickCore/Platform/Threads/Mutex.h"
#include "FennickCore/Support/Text.h"

#include <syslog.h>
#include <unistd.h>

#include <string>

namespace fennick {

namespace {

struct Sink {
  Mutex lock;
  bool standardError GUARDED_BY(lock) = ::isatty(STDERR_FILENO) == 1;
  std::function<void(std::string_view)> receiver GUARDED_BY(lock);
};

Sink &sink() {
  static Sink instance;
  return instance;
}

void writeToStandardError(std::string line) {
  line += '\n';
  [[maybe_unused]] const ssize_t ignored = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace

void log(std::string_view line) {
  const std::string text = "fennick: " + withoutControls(line);

  bool standardError = false;
  std::function<void(std::string_view)> receiver;
  {
    const Locked locked(sink().lock);
    standardError = sink().standardError;
    receiver = sink().receiver;
  }
  if (receiver)
    return receiver(text);
  ::syslog(LOG_USER | LOG_INFO, "%s", text.c_str());
  if (standardError)
    writeToStandardError(text);
}

void logToStandardError() {
  const Locked locked(sink().lock);
  sink().standardError = true;
}

void logTo(std::function<void(std::string_view)> receiver) {
  const Locked locked(sink().lock);
  sink().receiver = std::move(receiver);
}

} // namespace fennick
