#pragma once

#include <functional>
#include <string_view>

// Log lines: each is prefixed with "fennick: " and goes to the system log, and to standard error when that is
// a terminal or the program asked for it. Line breaks and other control characters inside a line are written
// as spaces, so that a name from outside cannot forge a line. Any thread.
namespace fennick {

void log(std::string_view line);

// From now on lines also go to standard error, whatever it is.
void logToStandardError();

// From now on each finished line ("fennick: …") goes to `receiver` and nowhere else, on the calling thread;
// an empty function restores the ordinary way. For programs that own the terminal, and for tests.
void logTo(std::function<void(std::string_view)> receiver);

} // namespace fennick
