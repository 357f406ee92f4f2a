#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/Metadata.h"

namespace fennick::picture {

// Returns what the first directory of a TIFF file contains besides the storage of its pixels, with EXIF
// encoded again. Pure function; one thread at a time.
[[nodiscard]] Metadata readTiff(Bytes bytes);

} // namespace fennick::picture
