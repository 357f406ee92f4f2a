#pragma once

#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <exiv2/exiv2.hpp>

// What an XMP packet states about a motion video or a gain map behind the picture. For this folder only,
// since it uses Exiv2's types. May throw Exiv2's exceptions.
namespace fennick::picture {

// Corrects the statements to `lengths` and removes those about missing companions, including entries of the
// container for other kinds. Returns whether anything changed.
[[nodiscard]] bool stateCompanions(Exiv2::XmpData &data, const CompanionLengths &lengths);

} // namespace fennick::picture
