#include "FennickCore/Platform/Network/Firewalld.h"

#include "tests/Desktop/FakeService.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <tuple>

namespace quarrow::test {
namespace {

using fennick::FirewalldAnswers;

// Answers like firewalld. wlan0 is in the zone "home", which lists port 8000; eth0 in "guarded", which
// refuses questions. The default zone accepts everything.
QDBusMessage answer(const QDBusMessage &call) {
  const QString method = call.member();
  const QString first = call.arguments().value(0).toString();
  if (method == "getDefaultZone")
    return call.createReply("public");
  if (method == "getZoneOfInterface")
    return call.createReply(first == "wlan0" ? "home" : first == "eth0" ? "guarded" : "");
  if (first == "guarded")
    return call.createErrorReply(QDBusError::AccessDenied, "no");
  if (method == "queryPort")
    return call.createReply(call.arguments() == QVariantList{"home", "8000", "tcp"});
  return call.createReply(first == "public" ? QVariantMap{{"target", "ACCEPT"}} : QVariantMap());
}

std::optional<FirewalldAnswers> ask(std::uint16_t port, const std::string &interface) {
  std::optional<FirewalldAnswers> answers;
  std::atomic<bool> done = false;
  const std::jthread asking([&] {
    answers = fennick::askFirewalld(port, interface, qgetenv("DBUS_SESSION_BUS_ADDRESS").toStdString());
    done = true;
    QMetaObject::invokeMethod(QCoreApplication::instance(), [] {}, Qt::QueuedConnection); // ends the waiting
  });
  runUntil([&] { return done.load(); });
  return answers;
}

TEST(FirewalldTest, AsksForTheZoneOfTheInterface) {
  EXPECT_FALSE(ask(8000, "wlan0")); // it does not run
  const FakeService service("org.fedoraproject.FirewallD1", answer);
  const std::tuple<std::string, std::uint16_t, FirewalldAnswers> cases[] = {
      {"wlan0", 8000, {"home", true, "default"}}, {"wlan0", 8001, {"home", false, "default"}},
      {"eth0", 8000, {"guarded", {}, {}}},        {"eth1", 8000, {"public", false, "ACCEPT"}},
      {"", 8000, {"public", false, "ACCEPT"}},
  };
  for (const auto &[interface, port, answers] : cases)
    EXPECT_EQ(ask(port, interface), answers) << interface << port;
}

} // namespace
} // namespace quarrow::test
