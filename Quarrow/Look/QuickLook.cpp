#include "Quarrow/Look/QuickLook.h"

namespace quarrow {

QuickLook::QuickLook(AppController &controller) : controller_(controller) {}

} // namespace quarrow
