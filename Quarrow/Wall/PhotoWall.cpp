#include "Quarrow/Wall/PhotoWall.h"

namespace quarrow {

PhotoWall::PhotoWall(AppController &controller) : controller_(controller) {}

} // namespace quarrow
