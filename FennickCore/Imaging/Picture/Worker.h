#pragma once

#include "FennickCore/Platform/Processes/MessageSocket.h"

namespace fennick::picture {

// The imaging process after its start: gives everything up, says hello and answers requests until the other
// side is gone. The status to exit with. The only thread.
[[nodiscard]] int serve(MessageSocket socket);

} // namespace fennick::picture
