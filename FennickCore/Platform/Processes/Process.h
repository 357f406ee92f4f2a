#pragma once

// Settings of the running process. Main thread, before any other thread is started, unless said otherwise.
namespace fennick {

// What every program of ours begins with: a peer that goes away is an error of the write, not the end of the
// program; and large buffers go back to the system as soon as they are freed, so that a burst of uploads
// leaves no trace in the memory of a program that runs for months.
void prepareProcess();

// Makes the home directory the working directory, so that the drive of the folder in which the program was
// started can be unmounted. After relative paths of the command line were made absolute.
void leaveWorkingDirectory();

[[nodiscard]] bool standardOutputIsTerminal();

// Lets `signal` do to the program what it does when nobody handles it: end it, or stop it until it is
// continued; then this returns, and the signal is handled as before. Main thread, at any time.
void takeDefaultAction(int signal);

} // namespace fennick
