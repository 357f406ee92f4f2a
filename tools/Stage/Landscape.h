#pragma once

#include <QSize>

#include <string>

namespace quarrow::test {

// A photo for views: hills at sunset, as a JPEG. `variant` changes the light and the hills.
[[nodiscard]] std::string landscape(const QSize &size, int variant = 0);

} // namespace quarrow::test
