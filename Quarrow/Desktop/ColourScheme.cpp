#include "Quarrow/Desktop/ColourScheme.h"

#include "Quarrow/Desktop/DBusCall.h"

#include <QColor>
#include <QDBusMessage>
#include <QGuiApplication>
#include <QMetaType>
#include <QPalette>

namespace quarrow {

namespace {

constexpr const char *kService = "org.freedesktop.portal.Desktop";
constexpr const char *kPath = "/org/freedesktop/portal/desktop";
constexpr const char *kInterface = "org.freedesktop.portal.Settings";
constexpr const char *kGroup = "org.freedesktop.appearance";
constexpr const char *kKey = "color-scheme";

enum class Wish : uint { none, dark, light };

QPalette palette(bool dark) {
  const QColor ground = dark ? QColor(0x16, 0x17, 0x16) : QColor(0xF6, 0xF5, 0xF2);
  const QColor control = dark ? QColor(0x2E, 0x31, 0x30) : QColor(0xE4, 0xE2, 0xDD);
  QPalette result(control, ground);
  result.setColor(QPalette::Base, dark ? QColor(0x1F, 0x21, 0x20) : QColor(0xFF, 0xFF, 0xFF));
  result.setColor(QPalette::Highlight, dark ? QColor(0x3F, 0xB8, 0xA5) : QColor(0x0F, 0x7B, 0x6C));
  result.setColor(QPalette::HighlightedText, dark ? QColor(0x0A, 0x1F, 0x1B) : QColor(0xFF, 0xFF, 0xFF));
  return result;
}

// Older portals wrap the value twice.
uint number(QVariant value) {
  while (value.canConvert<QDBusVariant>())
    value = value.value<QDBusVariant>().variant();
  return value.toUInt();
}

} // namespace

bool isDarkScheme() { return QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5; }

ColourScheme::ColourScheme(QDBusConnection bus) {
  qRegisterMetaType<QDBusVariant>(); // the slot's types are looked up by their names
  bus.connect(kService, kPath, kInterface, "SettingChanged", this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  auto question = QDBusMessage::createMethodCall(kService, kPath, kInterface, "Read");
  question << QString(kGroup) << QString(kKey);
  callAsync(bus, question, *this, [](const QDBusMessage &answer) {
    if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty())
      apply(answer.arguments().front());
  });
}

void ColourScheme::settingChanged(const QString &group, const QString &key, const QDBusVariant &value) {
  if (group == kGroup && key == kKey)
    apply(value.variant());
}

void ColourScheme::apply(const QVariant &wish) {
  const auto wanted = Wish{number(wish)};
  if (wanted != Wish::dark && wanted != Wish::light)
    return;
  if (const bool dark = wanted == Wish::dark; dark != isDarkScheme())
    QGuiApplication::setPalette(palette(dark));
}

} // namespace quarrow
