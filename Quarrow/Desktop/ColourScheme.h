#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

namespace quarrow {

// Whether the application's colours are light letters on dark.
[[nodiscard]] bool isDarkScheme();

// Lets the application's colours follow the session's wish for light or dark, which the desktop portal knows
// even where Qt does not hear of it. A session without a wish keeps what Qt found. Main thread.
class ColourScheme final : public QObject {
  Q_OBJECT

public:
  explicit ColourScheme(QDBusConnection bus);

private:
  Q_SLOT void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);
  static void apply(const QVariant &wish);
};

} // namespace quarrow
