#pragma once

#include "FennickCore/Platform/Processes/InstanceGuard.h"

#include <QSocketNotifier>

#include <functional>

namespace quarrow {

// Keeps this program the single running instance while the object exists, and delivers the arguments of later
// launches on Qt's event loop. Main thread, while there is an application object.
class SingleInstance {
public:
  // Called once for each launch, in order; must not destroy this object.
  using Handler = std::function<void(const fennick::InstanceGuard::Arguments &)>;

  SingleInstance(fennick::InstanceGuard guard, Handler handler);

private:
  fennick::InstanceGuard guard_;
  QSocketNotifier notifier_;
};

} // namespace quarrow
