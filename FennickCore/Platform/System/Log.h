#pragma once

#include <functional>
#include <string_view>

// Writes log lines with the prefix "fennick: " to the system log, and to standard error if that is a terminal
// or the program requested it. Control characters are replaced by spaces, so that a name from outside cannot
// forge a line. Any thread.
namespace fennick {

void log(std::string_view line);

// Lines also go to standard error from now on, even if it is not a terminal.
void logToStandardError();

// Passes each finished line ("fennick: …") to `receiver` only, on the calling thread. An empty function
// restores the default. For programs that own the terminal, and for tests.
void logTo(std::function<void(std::string_view)> receiver);

} // namespace fennick
