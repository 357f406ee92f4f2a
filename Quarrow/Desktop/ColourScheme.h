#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

namespace quarrow {

// Returns whether the application's colours are light text on dark.
[[nodiscard]] bool isDarkScheme();

// Applies the session's preference for light or dark to the application's colours. The desktop portal knows
// it even if Qt does not. Without a preference Qt's choice stays. Main thread.
class ColourScheme final : public QObject {
  Q_OBJECT

public:
  explicit ColourScheme(QDBusConnection bus);

private:
  Q_SLOT void settingChanged(const QString &group, const QString &key, const QDBusVariant &value);
  static void apply(const QVariant &wish);
};

} // namespace quarrow
