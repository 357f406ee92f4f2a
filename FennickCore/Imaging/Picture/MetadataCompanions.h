#pragma once

#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <exiv2/exiv2.hpp>

// What an XMP packet claims about a motion video or a gain map behind the picture. For this folder's own
// files: it shows Exiv2's types. May throw what Exiv2 throws.
namespace fennick::picture {

// Corrects the claims to `lengths` and removes those about what is not there, including entries of the
// container for other kinds of companions. Returns whether anything changed.
[[nodiscard]] bool stateCompanions(Exiv2::XmpData &data, const CompanionLengths &lengths);

} // namespace fennick::picture
