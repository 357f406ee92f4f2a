#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QQmlEngine>
#include <QString>

#include <optional>

namespace quarrow {

// The desktop's preferences for the look: light or dark, from the application's colours, and reduced motion,
// from the desktop portal. Main thread.
class Appearance : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_SINGLETON
  Q_PROPERTY(bool dark READ dark NOTIFY changed)
  Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY changed)

public:
  explicit Appearance(QObject *parent = nullptr);

  [[nodiscard]] bool dark() const;
  [[nodiscard]] bool reducedMotion() const { return !animates_ || pinnedDark_; }

  // Shows every view light or dark from now on, without motion, whatever the desktop's preferences: for
  // screenshots.
  void pin(bool dark);

  // Follows a setting of the desktop portal; settings that do not concern motion are ignored.
  Q_SLOT void follow(const QString &group, const QString &key, const QDBusVariant &value);

signals:
  void changed();

protected:
  bool eventFilter(QObject *watched, QEvent *event) override;

private:
  void ask(const QString &group, const QString &key);

  std::optional<bool> pinnedDark_;
  bool animates_ = true;
};

} // namespace quarrow
