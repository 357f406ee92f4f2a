#include "Quarrow/Desktop/TrayWatcher.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QGuiApplication>

#include <fmt/format.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

namespace quarrow {

namespace {

constexpr const char *kNotifierWatcher = "org.kde.StatusNotifierWatcher";

template <typename T>
using Reply = std::unique_ptr<T, decltype(&std::free)>;

xcb_connection_t *xServer() {
  const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 != nullptr ? x11->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t *connection, std::string_view name) {
  const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// Each screen has a tray of its own; Qt's windows are on the display's first.
xcb_atom_t traySelection(xcb_connection_t *connection) {
  char *host = nullptr;
  int display = 0;
  int screen = 0;
  xcb_parse_display(nullptr, &host, &display, &screen);
  std::free(host);
  return atom(connection, fmt::format("_NET_SYSTEM_TRAY_S{}", screen));
}

xcb_window_t ownerOf(xcb_connection_t *connection, xcb_atom_t selection) {
  const auto cookie = xcb_get_selection_owner(connection, selection);
  const Reply<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(connection, cookie, nullptr), &std::free);
  return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

} // namespace

TrayWatcher::TrayWatcher(const QDBusConnection &bus) {
  auto *services = new QDBusServiceWatcher(
      kNotifierWatcher, bus,
      QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration, this);
  connect(services, &QDBusServiceWatcher::serviceRegistered, this, [this] { noteNotifier(true); });
  connect(services, &QDBusServiceWatcher::serviceUnregistered, this, [this] { noteNotifier(false); });
  if (bus.isConnected() && bus.interface()->isServiceRegistered(kNotifierWatcher))
    noteNotifier(true);
  if (xcb_connection_t *connection = xServer()) {
    selection_ = traySelection(connection);
    QCoreApplication::instance()->installNativeEventFilter(this);
    lookForEmbedding();
  }
}

TrayWatcher::~TrayWatcher() = default;

void TrayWatcher::noteNotifier(bool present) { note(Kind::notifier, present); }

void TrayWatcher::lookForEmbedding() {
  manager_ = ownerOf(xServer(), selection_);
  const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY; // the same that Qt asks for
  if (manager_ != XCB_WINDOW_NONE)
    xcb_change_window_attributes(xServer(), manager_, XCB_CW_EVENT_MASK, &mask);
  note(Kind::embedding, manager_ != XCB_WINDOW_NONE);
}

void TrayWatcher::note(Kind kind, bool present) {
  if (!kind_ && present)
    kind_ = kind;
  if (kind_ != kind || present_ == present)
    return;
  present_ = present;
  emit changed();
}

// A new tray announces itself to the root window, whose messages Qt receives; one that ends destroys its
// window.
bool TrayWatcher::nativeEventFilter(const QByteArray &type, void *message, qintptr *) {
  if (type != "xcb_generic_event_t")
    return false;
  const auto *event = static_cast<const xcb_generic_event_t *>(message);
  const int kind = event->response_type & 0x7f;
  if (kind == XCB_CLIENT_MESSAGE) {
    const auto *announced = static_cast<const xcb_client_message_event_t *>(message);
    if (announced->format == 32 && announced->data.data32[1] == selection_)
      lookForEmbedding();
  } else if (kind == XCB_DESTROY_NOTIFY && manager_ != XCB_WINDOW_NONE) {
    if (static_cast<const xcb_destroy_notify_event_t *>(message)->window == manager_)
      lookForEmbedding();
  }
  return false;
}

} // namespace quarrow
