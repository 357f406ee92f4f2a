#pragma once

#include "FennickCore/Network/QRCodeRenderer.h"

#include <QUrl>

namespace quarrow {

// The picture as a PNG in a "data:" address, which every view can show. Empty when it cannot be made. Any
// thread.
[[nodiscard]] QUrl imageURL(const fennick::Bitmap &bitmap);

} // namespace quarrow
