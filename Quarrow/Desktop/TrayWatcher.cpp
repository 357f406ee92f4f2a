#include "Quarrow/Desktop/TrayWatcher.h"

#include "Quarrow/Desktop/WindowX11.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QGuiApplication>

#include <fmt/format.h>
#include <xcb/xcb.h>

#include <memory>

#include <cstdlib>

namespace quarrow {

namespace {

constexpr const char *kNotifierWatcher = "org.kde.StatusNotifierWatcher";

// Each screen has a tray of its own; Qt's windows are on the first.
xcb_atom_t traySelection(xcb_connection_t *connection) {
  char *host = nullptr;
  int display = 0;
  int screen = 0;
  xcb_parse_display(nullptr, &host, &display, &screen);
  const std::unique_ptr<char, X11Free> owned(host);
  return x11Atom(connection, fmt::format("_NET_SYSTEM_TRAY_S{}", screen));
}

xcb_window_t ownerOf(xcb_connection_t *connection, xcb_atom_t selection) {
  const auto cookie = xcb_get_selection_owner(connection, selection);
  const X11Reply<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(connection, cookie, nullptr));
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
  const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
  if (manager_ != XCB_WINDOW_NONE)
    xcb_change_window_attributes(xServer(), manager_, XCB_CW_EVENT_MASK, &mask);
  emit foregroundChanged();
  note(Kind::embedding, manager_ != XCB_WINDOW_NONE);
}

// Bars that accept both kinds of icons announce their colours only to embedded ones; they apply to all.
std::optional<QColor> TrayWatcher::foreground() const {
  if (manager_ == XCB_WINDOW_NONE)
    return std::nullopt;
  constexpr std::uint32_t kComponents = 3; // then those for errors, warnings and successes
  const auto cookie = xcb_get_property(xServer(), 0, manager_, x11Atom(xServer(), "_NET_SYSTEM_TRAY_COLORS"),
                                       XCB_ATOM_CARDINAL, 0, kComponents);
  const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(xServer(), cookie, nullptr));
  if (!reply || reply->format != 32 || reply->value_len != kComponents)
    return std::nullopt;
  const auto *component = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
  return QColor::fromRgba64(static_cast<std::uint16_t>(component[0]),
                            static_cast<std::uint16_t>(component[1]),
                            static_cast<std::uint16_t>(component[2]));
}

void TrayWatcher::note(Kind kind, bool present) {
  if (!kind_ && present)
    kind_ = kind;
  if (kind_ != kind || present_ == present)
    return;
  present_ = present;
  emit changed();
}

// A new tray sends a message to the root window, which Qt receives; the window of one that ends is destroyed.
bool TrayWatcher::nativeEventFilter(const QByteArray &type, void *message, qintptr *) {
  if (type != "xcb_generic_event_t")
    return false;
  const auto *event = static_cast<const xcb_generic_event_t *>(message);
  switch (event->response_type & 0x7f) {
  case XCB_CLIENT_MESSAGE: {
    const auto *announced = static_cast<const xcb_client_message_event_t *>(message);
    if (announced->format == 32 && announced->data.data32[1] == selection_)
      lookForEmbedding();
    break;
  }
  case XCB_DESTROY_NOTIFY:
    if (static_cast<const xcb_destroy_notify_event_t *>(message)->window == manager_)
      lookForEmbedding();
    break;
  case XCB_PROPERTY_NOTIFY:
    if (static_cast<const xcb_property_notify_event_t *>(message)->window == manager_)
      emit foregroundChanged();
    break;
  default:
    break;
  }
  return false;
}

} // namespace quarrow
