#pragma once

#include <expected>
#include <string>

namespace fennick::picture {

// Sanitizers need memory and system calls of their own: their builds have no limit on memory.
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

// Locks the whole process down to what reading a picture needs: no new privileges, no paths of the file
// system (Landlock, if the kernel has it, besides the filter), no network, no other processes, no executable
// memory. It can still read descriptors that it is handed and use memory, threads, and memory files. Anything
// else kills the process, except opening files, which fails with EACCES because libraries try it for optional
// things.
//
// Call it once, on the only thread, after libraries have loaded everything. The error says what could not be
// locked; nothing must be decoded then.
[[nodiscard]] std::expected<void, std::string> lockDown();

// Makes the kernel kill this process before others, above all before the program that started it, if the
// computer runs out of memory: losing one picture is better than losing the receiver. Does nothing if that is
// not allowed or has been set higher already. Call it before lockDown.
void offerToOutOfMemoryKiller();

// Limits memory and the size of written files, and disables core dumps. Call it before lockDown.
[[nodiscard]] std::expected<void, std::string> limitResources();

} // namespace fennick::picture
