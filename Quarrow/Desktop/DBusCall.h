#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

#include <functional>

class QObject;

namespace quarrow {

// Sends `call` and returns at once. `answered` gets the reply or the error message from the event loop of
// `context`, unless that object is gone by then. Thread of `context`.
void callAsync(const QDBusConnection &bus, const QDBusMessage &call, QObject &context,
               std::function<void(const QDBusMessage &)> answered);

} // namespace quarrow
