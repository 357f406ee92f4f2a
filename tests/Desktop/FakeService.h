#pragma once

#include "Quarrow/Desktop/DBusCall.h"
#include "tests/Desktop/RunUntil.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariantList>

#include <functional>
#include <utility>

namespace quarrow::test {

// A service on the session bus with a connection of its own.
class FakeService final : public QDBusVirtualObject {
public:
  // Returns the reply or error to send.
  using Answer = std::function<QDBusMessage(const QDBusMessage &call)>;

  FakeService(QString name, Answer answer)
      : name_(std::move(name)), answer_(std::move(answer)),
        bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("fake ") + name_)) {
    bus_.registerVirtualObject(QStringLiteral("/"), this, QDBusConnection::SubPath);
    bus_.registerService(name_);
  }
  ~FakeService() override {
    bus_.unregisterService(name_);
    QDBusConnection::disconnectFromBus(bus_.name());
  }
  FakeService(const FakeService &) = delete;
  FakeService &operator=(const FakeService &) = delete;

  void tell(const QString &path, const QString &interface, const QString &signal,
            const QVariantList &arguments) {
    auto message = QDBusMessage::createSignal(path, interface, signal);
    message.setArguments(arguments);
    bus_.send(message);
  }

  [[nodiscard]] QString introspect(const QString &) const override { return {}; }
  bool handleMessage(const QDBusMessage &call, const QDBusConnection &) override {
    const auto reply = answer_(call);
    if (call.isReplyRequired())
      bus_.send(reply);
    return true;
  }

private:
  const QString name_;
  const Answer answer_;
  QDBusConnection bus_;
};

// Runs the event loop until all requests to missing services have failed: errors arrive in the order of the
// calls.
inline void awaitErrors() {
  bool answered = false;
  QObject context;
  callAsync(QDBusConnection::sessionBus(),
            QDBusMessage::createMethodCall(QStringLiteral("no.such.Name"), QStringLiteral("/"), QString(),
                                           QStringLiteral("Nothing")),
            context, [&](const QDBusMessage &) { answered = true; });
  runUntil([&] { return answered; });
}

} // namespace quarrow::test
