#include "Quarrow/Desktop/DBusCall.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QObject>

#include <memory>
#include <tuple>
#include <utility>

namespace quarrow {

void callAsync(const QDBusConnection &bus, const QDBusMessage &call, QObject &context,
               std::function<void(const QDBusMessage &)> answered) {
  auto watcher = std::make_unique<QDBusPendingCallWatcher>(bus.asyncCall(call), &context);
  QObject::connect(watcher.get(), &QDBusPendingCallWatcher::finished, &context,
                   [answered = std::move(answered)](QDBusPendingCallWatcher *finished) {
                     finished->deleteLater();
                     answered(finished->reply());
                   });
  std::ignore = watcher.release(); // owned by `context`, its parent
}

} // namespace quarrow
