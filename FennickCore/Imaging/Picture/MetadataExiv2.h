#pragma once

#include <exception>
#include <optional>
#include <utility>

// The only place where Exiv2 is called.
namespace fennick::picture {

// Prepares Exiv2: silent, its XMP reader initialised, HEIC and AVIF readable. Has an effect only once. Call
// it before a process locks itself down.
void prepareExiv2();

// Returns the optional that `call` returns, or nullopt if it throws.
template <typename Call>
auto guarded(Call &&call) -> decltype(call()) {
  prepareExiv2();
  try {
    return std::forward<Call>(call)();
  } catch (const std::exception &) {
    return std::nullopt;
  }
}

} // namespace fennick::picture
