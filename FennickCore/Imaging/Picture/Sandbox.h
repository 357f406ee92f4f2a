#pragma once

#include <expected>
#include <string>

namespace fennick::picture {

// Builds for the sanitizers need memory and calls of their own: there is no limit on memory in them.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif
#else
inline constexpr bool kSanitized = false;
#endif

// Gives up for ever, for the whole process, everything that reading a picture does not need: new privileges,
// every path of the file system (Landlock, where the kernel has it, besides the filter), the network, other
// processes, executable memory. What is left is reading descriptors it is handed, memory, threads, and memory
// files. Anything else ends the process at once, except opening files, which fails with EACCES because
// libraries try it for things they can do without.
//
// Call it once, on the only thread, when libraries have loaded what they load. The error says what could not
// be given up; nothing must be decoded then.
[[nodiscard]] std::expected<void, std::string> lockDown();

// Makes the kernel end this process before others, above all before the program that started it, when the
// computer runs out of memory: a picture that was being read costs less than a receiver that is gone. Does
// nothing where that is not allowed or has been set higher already. Before lockDown.
void offerToOutOfMemoryKiller();

// Limits that go with it: memory, the size of what is written, no core dumps. Before lockDown.
[[nodiscard]] std::expected<void, std::string> limitResources();

} // namespace fennick::picture
