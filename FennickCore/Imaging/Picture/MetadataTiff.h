#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/Metadata.h"

namespace fennick::picture {

// What the first directory of a TIFF file says beyond how its pixels are stored, the EXIF newly encoded. Pure
// function; one thread at a time.
[[nodiscard]] Metadata readTiff(Bytes bytes);

} // namespace fennick::picture
