#pragma once

#include "Quarrow/Desktop/HotKeyBackend.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <cstdint>
#include <memory>
#include <optional>

namespace quarrow {

// Registers the program's desktop entry with the desktop portal, which requires it before granting a shortcut
// to a program outside of a sandbox. Call it before any other request; portals without this interface ignore
// it.
void introduceToPortal(const QDBusConnection &bus);

// One shortcut requested from the desktop portal, from the request to the end of its session. The user
// decides and may choose other keys. Main thread.
class PortalSession final : public QObject {
  Q_OBJECT

public:
  PortalSession(QDBusConnection bus, const HotKeyPreset &preset);
  ~PortalSession() override;
  PortalSession(const PortalSession &) = delete;
  PortalSession &operator=(const PortalSession &) = delete;

signals:
  void pressed();
  void refused(); // or withdrawn, or there is no such portal

private:
  Q_SLOT void created(uint response, const QVariantMap &results);
  Q_SLOT void bound(uint response, const QVariantMap &results);
  Q_SLOT void activated(const QDBusObjectPath &session, const QString &shortcut, qulonglong time,
                        const QVariantMap &options);
  void ask(const QString &method, QVariantList arguments, QVariantMap options, const char *answered);
  [[nodiscard]] QString shortcutID() const;

  QDBusConnection bus_;
  const HotKeyPreset preset_;
  QString request_; // the object that answers the current request
  QString session_; // empty until it is granted
};

// Shortcuts through org.freedesktop.portal.GlobalShortcuts, for Wayland. The portal may ask the user, so
// `take` succeeds first and a refusal follows later. After a restart of the portal the shortcut is requested
// again. Releasing and taking the same key in one turn of the event loop keeps the session, and a refused key
// is refused again until it was released for a while, so that the user is not asked twice.
class HotKeyPortal final : public QObject, public HotKeyBackend {
public:
  explicit HotKeyPortal(QDBusConnection bus);

  bool take(const HotKeyPreset &preset) override;
  void release() override;

private:
  void requestWanted();
  void refuse();
  void portalIsBack();

  const QDBusConnection bus_;
  std::optional<HotKeyPreset> wanted_;
  std::optional<HotKeyPreset> asked_; // the key of the session, or of the refused one
  std::unique_ptr<PortalSession> session_;
  bool portalWasLost_ = false; // while a session existed
};

} // namespace quarrow
