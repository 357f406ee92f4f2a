#pragma once

#include "Quarrow/App/AppController.h"

#include <QObject>

namespace quarrow {

// One photo of the wall in full, and what is known of it. Main thread.
class QuickLook : public QObject {
  Q_OBJECT

public:
  // `controller` outlives the object.
  explicit QuickLook(AppController &controller);

private:
  [[maybe_unused]] AppController &controller_;
};

} // namespace quarrow
