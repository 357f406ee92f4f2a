#include "Quarrow/SettingsForm/SettingsForm.h"

namespace quarrow {

SettingsForm::SettingsForm(AppController &controller) : controller_(controller) {}

} // namespace quarrow
