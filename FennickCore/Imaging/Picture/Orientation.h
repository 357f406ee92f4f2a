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

// Returns the orientation that viewers use: the rotation and mirroring properties of HEIC and AVIF, EXIF for
// the others. May be out of range; nullopt if there is none.
[[nodiscard]] std::optional<std::int64_t> storedOrientation(Bytes file, PictureType type);

// Returns the whole file with only its orientation changed to `orientation` (1 to 8); every other byte of
// content stays, though it may move. Fails with `unsupported` if the format or structure cannot store it, and
// with `undecodable` if the file is not of `type` or is damaged there.
[[nodiscard]] std::expected<std::string, PictureFault> withOrientation(Bytes file, PictureType type,
                                                                       std::int64_t orientation);

} // namespace fennick::picture
