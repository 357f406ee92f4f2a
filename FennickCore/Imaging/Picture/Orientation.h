#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <expected>
#include <optional>
#include <string>

// The orientation that a picture file states. Pure functions; any thread.
namespace fennick::picture {

// As viewers see it: the rotation and mirroring properties of HEIC and AVIF, EXIF for the others. May be out
// of range; absent: not said.
[[nodiscard]] std::optional<std::int64_t> storedOrientation(Bytes file, PictureType type);

// The whole file with only its orientation changed to `orientation` (1 to 8); every other byte of content
// stays, though it may move. `unsupported`: a format or a structure that has no room for it; `undecodable`: a
// file that is not of `type` or is damaged where the orientation stands.
[[nodiscard]] std::expected<std::string, PictureFault> withOrientation(Bytes file, PictureType type,
                                                                       std::int64_t orientation);

} // namespace fennick::picture
