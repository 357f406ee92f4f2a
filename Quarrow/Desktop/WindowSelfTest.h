#pragma once

#include "Quarrow/Desktop/AppDesktop.h"

#include <expected>
#include <string>

namespace quarrow {

// Opens the panel and every window in turn, waits until each has been painted and closes it. The error is a
// sentence that names the window that failed, or the first warning of a view. Runs the event loop. Main
// thread.
[[nodiscard]] std::expected<void, std::string> testWindows(AppDesktop &desktop);

} // namespace quarrow
