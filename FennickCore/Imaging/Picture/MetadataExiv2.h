#pragma once

#include <exception>
#include <optional>
#include <utility>

// The one seam where Exiv2 is called.
namespace fennick::picture {

// Makes Exiv2 ready: silent, its XMP reader initialised, HEIC and AVIF readable. Done once, however often it
// is called; to be called before a process locks itself down.
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
