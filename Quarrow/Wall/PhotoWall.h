#pragma once

#include "Quarrow/App/AppController.h"

#include <QObject>

namespace quarrow {

// The photo wall as its window shows it: what is on it, in which order, and what of it is selected. Main
// thread.
class PhotoWall : public QObject {
  Q_OBJECT

public:
  // `controller` outlives the object.
  explicit PhotoWall(AppController &controller);

private:
  [[maybe_unused]] AppController &controller_;
};

} // namespace quarrow
