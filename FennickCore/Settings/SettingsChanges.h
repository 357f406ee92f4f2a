#pragma once

#include "FennickCore/Settings/AppSettings.h"

namespace fennick {

// Gives `into` the value of `after` in every field in which `after` differs from `before`; its other fields
// stay. The records inside are gone through field by field, so that a new picture quality leaves the picture
// format alone. A naming goes as a whole unless all three are of the kind with a prefix. Any thread.
void carryChanges(const AppSettings &before, const AppSettings &after, AppSettings &into);

} // namespace fennick
