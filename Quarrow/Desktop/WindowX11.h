#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string_view>

// Access to the X server for what Qt does not cover. Main thread.
namespace quarrow {

// Frees answers of the X library with free().
struct X11Free {
  void operator()(void *reply) const { std::free(reply); } // NOLINT(cppcoreguidelines-no-malloc)
};
template <typename T>
using X11Reply = std::unique_ptr<T, X11Free>;

// Returns the application's connection; null on other platforms.
[[nodiscard]] xcb_connection_t *xServer();

// Returns the server's number for a name; 0 if the connection is broken.
[[nodiscard]] xcb_atom_t x11Atom(xcb_connection_t *connection, std::string_view name);

// Gives these states to a window before it is shown.
void setWindowStates(xcb_connection_t *connection, std::uint32_t window,
                     std::initializer_list<std::string_view> states);

} // namespace quarrow
