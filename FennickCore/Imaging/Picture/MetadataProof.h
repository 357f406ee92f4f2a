#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

namespace fennick::picture {

// What a written file must not contain.
enum class Removal { location, allMetadata };

// Returns whether a written file is free of what had to be removed, according to two readers: Exiv2 and the
// one in this folder. Any doubt, such as a file that one of them cannot read or bytes behind its end, returns
// false.
[[nodiscard]] bool proveRemoved(Bytes written, PictureType type, Removal removal);

} // namespace fennick::picture
