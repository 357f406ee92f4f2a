#include "Quarrow/Desktop/HotKeyPortal.h"

#include "Quarrow/Desktop/HotKeyManager.h"
#include "tests/Desktop/FakeService.h"

#include <QDBusArgument>
#include <QGuiApplication>
#include <gmock/gmock.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quarrow {
namespace {

using ::testing::ElementsAre;

const QString kDesktop = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kShortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

// A desktop portal that grants shortcuts, or does what the test wants of it.
class FakePortal {
public:
  uint creation = 0; // its response to CreateSession; 0 is success
  uint binding = 0;
  bool knowsShortcuts = true;
  bool assigns = true; // whether the results contain the granted shortcut
  std::vector<std::string> asked;
  std::set<QString> sessions; // the open ones

  [[nodiscard]] QString session() const { return kDesktop + QStringLiteral("/session/") + token_; }
  void activate(const QString &path, const QString &shortcut, const QVariantMap &options = {}) {
    service_.tell(kDesktop, kShortcuts, QStringLiteral("Activated"),
                  {QVariant::fromValue(QDBusObjectPath(path)), shortcut, QVariant::fromValue(1ULL), options});
  }
  void endSession() {
    service_.tell(session(), QStringLiteral("org.freedesktop.portal.Session"), QStringLiteral("Closed"), {});
  }
  std::vector<std::string> take() { return std::exchange(asked, {}); }

private:
  QDBusMessage answer(const QDBusMessage &call) {
    const auto arguments = call.arguments();
    const QString method = call.member();
    if (method == QStringLiteral("Close")) {
      sessions.erase(call.path());
      return call.createReply();
    }
    asked.push_back(method.toStdString());
    if (method == QStringLiteral("Register")) {
      asked.back() += " " + arguments.first().toString().toStdString();
      return call.createReply();
    }
    if (!knowsShortcuts)
      return call.createErrorReply(QDBusError::UnknownInterface, QStringLiteral("no"));
    const auto options = qdbus_cast<QVariantMap>(arguments.last());
    if (method == QStringLiteral("CreateSession")) {
      token_ = options.value(QStringLiteral("session_handle_token")).toString();
      if (creation == 0)
        sessions.insert(session());
      return respond(call, options, creation, {{QStringLiteral("session_handle"), session()}});
    }
    const auto shortcuts = arguments.at(1).value<QDBusArgument>();
    QVariant granted = QVariant::fromValue(shortcuts);
    if (!assigns)
      granted = QVariantList{};
    note(shortcuts);
    return respond(call, options, binding, {{QStringLiteral("shortcuts"), granted}});
  }

  void note(const QDBusArgument &shortcuts) {
    QString id;
    QVariantMap properties;
    shortcuts.beginArray();
    shortcuts.beginStructure();
    shortcuts >> id >> properties;
    shortcuts.endStructure();
    shortcuts.endArray();
    asked.back() += " " + id.toStdString() + " " +
                    properties.value(QStringLiteral("preferred_trigger")).toString().toStdString();
  }

  QDBusMessage respond(const QDBusMessage &call, const QVariantMap &options, uint response,
                       const QVariantMap &results) {
    const QString sender = call.service().mid(1).replace('.', '_');
    const QString request =
        kDesktop + "/request/" + sender + "/" + options.value(QStringLiteral("handle_token")).toString();
    service_.tell(request, QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"),
                  {response, results});
    return call.createReply(QVariant::fromValue(QDBusObjectPath(request)));
  }

  QString token_;
  test::FakeService service_{QStringLiteral("org.freedesktop.portal.Desktop"),
                             [this](const QDBusMessage &call) { return answer(call); }};
};

class HotKeyPortalTest : public ::testing::Test {
protected:
  HotKeyPortalTest() {
    backend.listen({.pressed = [this] { ++pressed; }, .refused = [this] { ++refused; }});
  }
  [[nodiscard]] bool take(std::int64_t id) { return backend.take(*HotKeyManager::preset(id)); }
  static void awaitCalls(const FakePortal &portal, std::size_t count) {
    test::runUntil([&] { return portal.asked.size() >= count; });
  }

  HotKeyPortal backend{QDBusConnection::sessionBus()};
  int pressed = 0;
  int refused = 0;
};

TEST_F(HotKeyPortalTest, ReportsPressesAndDoesNotAskAgain) {
  FakePortal portal;
  ASSERT_TRUE(take(0));
  awaitCalls(portal, 2);
  EXPECT_THAT(portal.take(), ElementsAre("CreateSession", "BindShortcuts fnck-0 CTRL+ALT+LOGO+p"));

  portal.activate(QStringLiteral("/org/freedesktop/portal/desktop/session/other"), QStringLiteral("fnck-0"));
  portal.activate(portal.session(), QStringLiteral("fnck-1"));
  portal.activate(portal.session(), QStringLiteral("fnck-0"));
  test::runUntil([&] { return pressed > 0; });

  backend.release();
  EXPECT_TRUE(take(0));
  portal.activate(portal.session(), QStringLiteral("fnck-0"));
  test::runUntil([&] { return pressed > 1; });
  EXPECT_THAT(portal.take(), ElementsAre());

  backend.release();
  EXPECT_TRUE(take(2));
  awaitCalls(portal, 2);
  EXPECT_THAT(portal.take(), ElementsAre("CreateSession", "BindShortcuts fnck-2 SHIFT+LOGO+2"));
  EXPECT_THAT(portal.sessions, ElementsAre(portal.session()));
  backend.release();
  test::runUntil([&] { return portal.sessions.empty(); });
  EXPECT_EQ(pressed, 2);
  EXPECT_EQ(refused, 0);
}

TEST_F(HotKeyPortalTest, AsksARestartedPortalAgain) {
  QGuiApplication::setDesktopFileName(QStringLiteral("tevrin"));
  std::optional<FakePortal> portal(std::in_place);
  ASSERT_TRUE(take(0));
  awaitCalls(*portal, 2);
  portal.reset();
  portal.emplace();
  awaitCalls(*portal, 3);
  EXPECT_THAT(portal->take(),
              ElementsAre("Register tevrin", "CreateSession", "BindShortcuts fnck-0 CTRL+ALT+LOGO+p"));
  portal->activate(portal->session(), QStringLiteral("fnck-0"),
                   {{QStringLiteral("activation_token"), QStringLiteral("granted")}});
  test::runUntil([&] { return pressed == 1; });
  EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "granted");
  qunsetenv("XDG_ACTIVATION_TOKEN");
  EXPECT_EQ(refused, 0);
}

TEST_F(HotKeyPortalTest, ReportsARefusalOnceUntilTheShortcutIsReleased) {
  FakePortal portal;
  const std::function<void()> reasons[] = {[&] { portal.knowsShortcuts = false; },
                                           [&] { portal.creation = 1; }, [&] { portal.binding = 2; },
                                           [&] { portal.assigns = false; }};
  int expected = 0;
  for (const auto &reason : reasons) {
    portal.knowsShortcuts = portal.assigns = true;
    portal.creation = portal.binding = 0;
    reason();
    EXPECT_TRUE(take(4));
    ++expected;
    test::runUntil([&] { return refused == expected; });
    portal.take();
    backend.release();
    EXPECT_FALSE(take(4));
    backend.release();
    QCoreApplication::processEvents();
    EXPECT_THAT(portal.take(), ElementsAre());
  }
}

TEST_F(HotKeyPortalTest, HasNoShortcutWithoutAPortalOrSession) {
  EXPECT_TRUE(take(4));
  test::runUntil([&] { return refused == 1; });
  backend.release();
  QCoreApplication::processEvents();

  FakePortal portal;
  EXPECT_TRUE(take(4));
  awaitCalls(portal, 2);
  portal.endSession();
  test::runUntil([&] { return refused == 2; });
}

} // namespace
} // namespace quarrow
