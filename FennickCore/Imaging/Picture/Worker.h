#pragma once

#include "FennickCore/Platform/Processes/MessageSocket.h"

namespace fennick::picture {

// Runs the imaging process after its start: locks it down, sends the greeting and answers requests until the
// other side closes. Returns the exit status. Runs on the only thread.
[[nodiscard]] int serve(MessageSocket socket);

} // namespace fennick::picture
