#include "Quarrow/Views/Appearance.h"

#include <QColor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace quarrow {

namespace {

constexpr const char *kService = "org.freedesktop.portal.Desktop";
constexpr const char *kPath = "/org/freedesktop/portal/desktop";
constexpr const char *kInterface = "org.freedesktop.portal.Settings";

struct Setting {
  const char *group;
  const char *key;
};
constexpr Setting kAnimations{.group = "org.gnome.desktop.interface", .key = "enable-animations"};
constexpr Setting kAnimationLength{.group = "org.kde.kdeglobals.KDE", .key = "AnimationDurationFactor"};

// Older portals wrap the value twice.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>())
    value = value.value<QDBusVariant>().variant();
  return value;
}

} // namespace

Appearance::Appearance(QObject *parent) : QObject(parent) {
  qGuiApp->installEventFilter(this);
  QDBusConnection::sessionBus().connect(kService, kPath, kInterface, "SettingChanged", this,
                                        SLOT(follow(QString, QString, QDBusVariant)));
  for (const auto &each : {kAnimations, kAnimationLength})
    ask(each.group, each.key);
}

bool Appearance::dark() const {
  return pinnedDark_.value_or(QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5F);
}

void Appearance::pin(bool dark) {
  pinnedDark_ = dark;
  emit changed();
}

void Appearance::ask(const QString &group, const QString &key) {
  auto question = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
  question << group << key;
  auto *answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, group, key] {
    if (const QDBusPendingReply<QDBusVariant> reply = *answer; reply.isValid())
      follow(group, key, reply.value());
    answer->deleteLater();
  });
}

void Appearance::follow(const QString &group, const QString &key, const QDBusVariant &value) {
  const QVariant plain = unwrapped(value.variant());
  if (group == kAnimations.group && key == kAnimations.key)
    animates_ = plain.toBool();
  else if (group == kAnimationLength.group && key == kAnimationLength.key)
    animates_ = plain.toDouble() > 0;
  else
    return;
  emit changed();
}

bool Appearance::eventFilter(QObject *watched, QEvent *event) {
  if (event->type() == QEvent::ApplicationPaletteChange)
    emit changed();
  return QObject::eventFilter(watched, event);
}

} // namespace quarrow
