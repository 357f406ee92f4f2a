#include "Quarrow/Desktop/WindowX11.h"

#include <QGuiApplication>

#include <vector>

namespace quarrow {

xcb_connection_t *xServer() {
  const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_atom_t x11Atom(xcb_connection_t *connection, std::string_view name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void setWindowStates(xcb_connection_t *connection, std::uint32_t window,
                     std::initializer_list<std::string_view> states) {
  std::vector<xcb_atom_t> atoms;
  for (const auto state : states)
    atoms.push_back(x11Atom(connection, state));
  xcb_change_property(connection, XCB_PROP_MODE_APPEND, window, x11Atom(connection, "_NET_WM_STATE"),
                      XCB_ATOM_ATOM, 32, static_cast<std::uint32_t>(atoms.size()), atoms.data());
}

} // namespace quarrow
