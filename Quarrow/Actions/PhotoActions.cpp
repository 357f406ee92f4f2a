#include "Quarrow/Actions/PhotoActions.h"

namespace quarrow {

PhotoActions::PhotoActions(AppController &controller) : controller_(controller) {}

} // namespace quarrow
