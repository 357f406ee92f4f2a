#pragma once

#include "Quarrow/App/AppController.h"

#include <QObject>

namespace quarrow {

// Every field of the settings as a form shows it: its value, what it means for the next photo, and why an
// input cannot be taken. Main thread.
class SettingsForm : public QObject {
  Q_OBJECT

public:
  // `controller` outlives the object.
  explicit SettingsForm(AppController &controller);

private:
  [[maybe_unused]] AppController &controller_;
};

} // namespace quarrow
