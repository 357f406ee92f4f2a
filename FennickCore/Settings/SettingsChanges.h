#pragma once

#include "FennickCore/Settings/AppSettings.h"

namespace fennick {

// Copies into `into` every field in which `after` differs from `before`. Nested records are compared field by
// field, so that a new picture quality leaves the picture format alone. A naming is copied as a whole unless
// all three are of the kind with a prefix. Any thread.
void carryChanges(const AppSettings &before, const AppSettings &after, AppSettings &into);

} // namespace fennick
