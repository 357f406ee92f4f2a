#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

class QObject;

namespace quarrow {

// Sends `call` and returns at once. `answered` is called with the reply or the error from the event loop of
// `context`, unless that object is destroyed by then. Thread of `context`.
void callAsync(const QDBusConnection &bus, const QDBusMessage &call, QObject &context,
               std::function<void(const QDBusMessage &)> answered);

} // namespace quarrow
