#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <string_view>

// What Qt does not say to the X server for us. Main thread.
namespace quarrow {

// Answers of the X library are given back with free().
struct X11Free {
  void operator()(void *reply) const { std::free(reply); } // NOLINT(cppcoreguidelines-no-malloc)
};
template <typename T>
using X11Reply = std::unique_ptr<T, X11Free>;

// The application's own connection; null on other platforms.
[[nodiscard]] xcb_connection_t *xServer();

// The server's number for a name; 0 when the connection is broken.
[[nodiscard]] xcb_atom_t x11Atom(xcb_connection_t *connection, std::string_view name);

// Gives these states to a window that is not shown yet, for the window manager to read when it is.
void setWindowStates(xcb_connection_t *connection, std::uint32_t window,
                     std::initializer_list<std::string_view> states);

} // namespace quarrow
