#include "Quarrow/Desktop/HotKeyPortal.h"

#include "Quarrow/Desktop/DBusCall.h"
#include "Quarrow/Desktop/WindowedApplication.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <QList>
#include <QMetaType>
#include <QPointer>
#include <QStringList>
#include <QTimer>

#include <utility>

namespace quarrow {

namespace {

// A shortcut in the portal's format, (sa{sv}).
struct PortalShortcut {
  QString id;
  QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut) {
  argument.beginStructure();
  argument << shortcut.id << shortcut.properties;
  argument.endStructure();
  return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut) {
  argument.beginStructure();
  argument >> shortcut.id >> shortcut.properties;
  argument.endStructure();
  return argument; // NOLINT(bugprone-return-const-ref-from-parameter): it is Qt's form
}

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kRequest = QStringLiteral("org.freedesktop.portal.Request");
const QString kSession = QStringLiteral("org.freedesktop.portal.Session");

// Returns a name that no other request or session of this program has.
QString nextToken() {
  static int count = 0; // main thread
  return QStringLiteral("tevrin%1").arg(++count);
}

// Returns "CTRL+ALT+LOGO+p", the desktops' notation for shortcuts.
QString triggerOf(const HotKeyPreset &preset) {
  QStringList keys;
  for (const auto &[modifier, name] :
       {std::pair(HotKeyPreset::kControl, "CTRL"), std::pair(HotKeyPreset::kOption, "ALT"),
        std::pair(HotKeyPreset::kShift, "SHIFT"), std::pair(HotKeyPreset::kCommand, "LOGO")})
    if ((preset.modifiers & modifier) != 0)
      keys.append(QString::fromLatin1(name));
  keys.append(QString::fromLatin1(hotKeySymbol(preset.keyCode).name));
  return keys.join(QLatin1Char('+'));
}

} // namespace

void introduceToPortal(const QDBusConnection &bus) {
  auto call = QDBusMessage::createMethodCall(
      kService, kPath, QStringLiteral("org.freedesktop.host.portal.Registry"), QStringLiteral("Register"));
  call << QGuiApplication::desktopFileName() << QVariantMap();
  bus.send(call); // without waiting for an answer
}

PortalSession::PortalSession(QDBusConnection bus, const HotKeyPreset &preset)
    : bus_(std::move(bus)), preset_(preset) {
  qRegisterMetaType<QDBusObjectPath>(); // Qt requires registered types to connect a slot
  qDBusRegisterMetaType<PortalShortcut>();
  qDBusRegisterMetaType<QList<PortalShortcut>>();
  bus_.connect(kService, kPath, kShortcuts, QStringLiteral("Activated"), this,
               SLOT(activated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
  ask(QStringLiteral("CreateSession"), {}, {{QStringLiteral("session_handle_token"), nextToken()}},
      SLOT(created(uint, QVariantMap)));
}

PortalSession::~PortalSession() {
  const auto close = [this](const QString &path, const QString &interface) {
    if (!path.isEmpty())
      bus_.send(QDBusMessage::createMethodCall(kService, path, interface, QStringLiteral("Close")));
  };
  close(request_, kRequest);
  close(session_, kSession);
}

QString PortalSession::shortcutID() const { return QStringLiteral("fnck-%1").arg(preset_.id); }

// The answer is a signal of an object whose path is known before the request.
void PortalSession::ask(const QString &method, QVariantList arguments, QVariantMap options,
                        const char *answered) {
  const QString token = nextToken();
  const QString sender = bus_.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
  request_ = QStringLiteral("%1/request/%2/%3").arg(kPath, sender, token);
  bus_.connect(kService, request_, kRequest, QStringLiteral("Response"), this, answered);
  options.insert(QStringLiteral("handle_token"), token);
  arguments.append(options);
  auto call = QDBusMessage::createMethodCall(kService, kPath, kShortcuts, method);
  call.setArguments(arguments);
  callAsync(bus_, call, *this, [this](const QDBusMessage &reply) {
    if (reply.type() != QDBusMessage::ErrorMessage)
      return;
    request_.clear();
    emit refused();
  });
}

void PortalSession::created(uint response, const QVariantMap &results) {
  request_.clear();
  session_ = results.value(QStringLiteral("session_handle")).toString();
  if (response != 0 || session_.isEmpty())
    return emit refused();
  bus_.connect(kService, session_, kSession, QStringLiteral("Closed"), this, SIGNAL(refused()));
  const PortalShortcut shortcut{shortcutID(),
                                {{QStringLiteral("description"), tr("打开接收照片的面板")},
                                 {QStringLiteral("preferred_trigger"), triggerOf(preset_)}}};
  ask(QStringLiteral("BindShortcuts"),
      {QVariant::fromValue(QDBusObjectPath(session_)), QVariant::fromValue(QList{shortcut}), QString()}, {},
      SLOT(bound(uint, QVariantMap)));
}

void PortalSession::bound(uint response, const QVariantMap &results) {
  request_.clear();
  const auto granted = qdbus_cast<QList<PortalShortcut>>(results.value(QStringLiteral("shortcuts")));
  if (response != 0 || granted.isEmpty())
    emit refused();
}

void PortalSession::activated(const QDBusObjectPath &session, const QString &shortcut, qulonglong,
                              const QVariantMap &options) {
  if (session_.isEmpty() || session.path() != session_ || shortcut != shortcutID())
    return;
  adoptActivationToken(options.value(QStringLiteral("activation_token")).toString());
  emit pressed();
}

HotKeyPortal::HotKeyPortal(QDBusConnection bus) : bus_(std::move(bus)) {
  const auto *portal = new QDBusServiceWatcher(
      kService, bus_, QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration,
      this);
  connect(portal, &QDBusServiceWatcher::serviceUnregistered, this,
          [this] { portalWasLost_ = session_ != nullptr; });
  connect(portal, &QDBusServiceWatcher::serviceRegistered, this, &HotKeyPortal::portalIsBack);
}

void HotKeyPortal::portalIsBack() {
  if (!std::exchange(portalWasLost_, false) || !session_)
    return;
  introduceToPortal(bus_);
  session_.reset();
  asked_.reset();
  requestWanted();
}

bool HotKeyPortal::take(const HotKeyPreset &preset) {
  wanted_ = preset;
  if (asked_ == wanted_)
    return session_ != nullptr;
  requestWanted();
  return true;
}

void HotKeyPortal::release() {
  wanted_.reset();
  QTimer::singleShot(0, this, &HotKeyPortal::requestWanted);
}

void HotKeyPortal::requestWanted() {
  if (asked_ == wanted_)
    return;
  session_.reset();
  asked_ = wanted_;
  if (!wanted_)
    return;
  session_ = std::make_unique<PortalSession>(bus_, *wanted_);
  connect(session_.get(), &PortalSession::pressed, this, [this] {
    if (wanted_)
      events().pressed();
  });
  // Queued, because a session must not be destroyed inside its own signal.
  const auto refused = [this, session = QPointer(session_.get())] {
    if (session)
      refuse();
  };
  connect(session_.get(), &PortalSession::refused, this, refused, Qt::QueuedConnection);
}

void HotKeyPortal::refuse() {
  session_.reset();
  if (wanted_)
    events().refused();
}

} // namespace quarrow
