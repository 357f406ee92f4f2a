#pragma once

// Settings of the running process. Main thread, before any other thread is started.
namespace fennick {

// What every program of ours begins with: a peer that goes away is an error of the write, not the end of the
// program; and large buffers go back to the system as soon as they are freed, so that a burst of uploads
// leaves no trace in the memory of a program that runs for months.
void prepareProcess();

[[nodiscard]] bool standardOutputIsTerminal();

} // namespace fennick
