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

// Tells the desktop portal whose desktop entry this program is known by, which portals want to know before
// they grant a shortcut to programs outside of a sandbox. Before anything else is asked of the portal; one
// that does not know the question passes it over.
void introduceToPortal(const QDBusConnection &bus);

// One shortcut that was asked for at the desktop portal, from the request to the end of its session. The
// user decides there, and may choose other keys than those proposed. Main thread.
class PortalSession final : public QObject {
  Q_OBJECT

public:
  PortalSession(QDBusConnection bus, const HotKeyPreset &preset);
  ~PortalSession() override;
  PortalSession(const PortalSession &) = delete;
  PortalSession &operator=(const PortalSession &) = delete;

signals:
  void pressed();
  void refused(); // or taken away, or there is no such portal

private:
  Q_SLOT void created(uint response, const QVariantMap &results);
  Q_SLOT void bound(uint response, const QVariantMap &results);
  Q_SLOT void activated(const QDBusObjectPath &session, const QString &shortcut, qulonglong time,
                        const QVariantMap &options);
  void ask(const QString &method, QVariantList arguments, QVariantMap options, const char *answered);
  [[nodiscard]] QString shortcutID() const;

  QDBusConnection bus_;
  const HotKeyPreset preset_;
  QString request_; // the object that answers the question under way
  QString session_; // empty until it was granted
};

// Shortcuts through org.freedesktop.portal.GlobalShortcuts, for Wayland. The portal may ask the person, so a
// key is first taken to be ours and its refusal told later. A portal that was restarted is asked anew. What
// is released and taken again in one turn of the event loop keeps its session, and what was refused is
// refused again until it was released for a while: nobody is asked twice.
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
  std::optional<HotKeyPreset> asked_; // what the session is for, or was before it was refused
  std::unique_ptr<PortalSession> session_;
  bool portalWasLost_ = false; // while it had a session of ours
};

} // namespace quarrow
