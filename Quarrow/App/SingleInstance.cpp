#include "Quarrow/App/SingleInstance.h"

#include <QObject>

#include <utility>

namespace quarrow {

SingleInstance::SingleInstance(fennick::InstanceGuard guard, Handler handler)
    : guard_(std::move(guard)), notifier_(guard_.descriptor(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this, handler = std::move(handler)] {
    for (const auto &arguments : guard_.receive())
      handler(arguments);
  });
}

} // namespace quarrow
