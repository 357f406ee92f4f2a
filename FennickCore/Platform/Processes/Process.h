#pragma once

// Settings of the running process. Main thread, before any other thread is started, unless said otherwise.
namespace fennick {

// Prepares every program of the project: writing to a closed connection returns an error instead of ending
// the program, and large buffers return to the system when they are freed, so that a burst of uploads does
// not stay in the memory of a program that runs for months.
void prepareProcess();

// Makes the home directory the working directory, so that the drive from which the program was started can be
// unmounted. Call it after relative paths of the command line were made absolute.
void leaveWorkingDirectory();

[[nodiscard]] bool standardOutputIsTerminal();

// Lets `signal` take its default action: end the program, or stop it until it is continued. After that this
// returns and the signal is handled as before. Main thread, at any time.
void takeDefaultAction(int signal);

} // namespace fennick
