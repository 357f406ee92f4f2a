#pragma once

#include <QSize>

#include <string>

namespace quarrow::test {

// Returns a JPEG of hills at sunset. `variant` changes the light and the hills.
[[nodiscard]] std::string landscape(const QSize &size, int variant = 0);

} // namespace quarrow::test
