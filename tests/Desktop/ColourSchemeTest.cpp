#include "Quarrow/Desktop/ColourScheme.h"

#include "tests/Desktop/FakeService.h"

#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <gtest/gtest.h>

namespace quarrow {
namespace {

constexpr uint kNone = 0;
constexpr uint kDark = 1;
constexpr uint kLight = 2;

const QString kGroup = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");

QVariant wrapped(const QVariant &value) { return QVariant::fromValue(QDBusVariant(value)); }

class ChangeCounter final : public QObject {
public:
  ChangeCounter() { qGuiApp->installEventFilter(this); }
  bool eventFilter(QObject *object, QEvent *event) override {
    changes += object == qGuiApp && event->type() == QEvent::ApplicationPaletteChange ? 1 : 0;
    return false;
  }
  int changes = 0;
};

TEST(ColourSchemeTest, FollowsTheColourSchemeOfTheSession) {
  test::FakeService portal(QStringLiteral("org.freedesktop.portal.Desktop"), [](const QDBusMessage &call) {
    if (call.arguments() != QVariantList{kGroup, kKey})
      return call.createErrorReply(QDBusError::InvalidArgs, QString());
    return call.createReply(wrapped(wrapped(kDark))); // wrapped twice, as by older portals
  });
  const auto tell = [&](const QString &group, const QString &key, uint wish) {
    portal.tell(QStringLiteral("/org/freedesktop/portal/desktop"),
                QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"),
                {group, key, wrapped(wish)});
  };
  const QPalette found = QGuiApplication::palette();
  ASSERT_FALSE(isDarkScheme());
  const ColourScheme scheme(QDBusConnection::sessionBus());
  test::runUntil(isDarkScheme);
  EXPECT_LT(QGuiApplication::palette().color(QPalette::Base).lightnessF(), 0.5F);
  EXPECT_GT(QGuiApplication::palette().color(QPalette::Text).lightnessF(), 0.5F);

  const ChangeCounter counter;
  tell(QStringLiteral("org.example"), kKey, kLight);
  tell(kGroup, QStringLiteral("contrast"), kLight);
  tell(kGroup, kKey, kNone);
  tell(kGroup, kKey, 7); // an unknown value
  tell(kGroup, kKey, kDark);
  tell(kGroup, kKey, kLight);
  test::runUntil([] { return !isDarkScheme(); });
  EXPECT_EQ(counter.changes, 1);
  EXPECT_LT(QGuiApplication::palette().color(QPalette::Text).lightnessF(), 0.5F);
  QGuiApplication::setPalette(found);
}

} // namespace
} // namespace quarrow
