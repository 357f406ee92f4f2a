#pragma once

#include "Quarrow/App/AppController.h"

#include <QObject>

namespace quarrow {

// What people do to the photos that are selected on the wall. Main thread.
class PhotoActions : public QObject {
  Q_OBJECT

public:
  // `controller` outlives the object.
  explicit PhotoActions(AppController &controller);

private:
  [[maybe_unused]] AppController &controller_;
};

} // namespace quarrow
