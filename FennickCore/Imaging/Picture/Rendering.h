#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureDecoder.h"

namespace fennick::picture {

// Encodes a picture again: see PictureDecoder::render. Called in the imaging process, one at a time; catches
// the exceptions of all libraries.
[[nodiscard]] PictureResult<Rendering> render(Bytes file, const RenderRequest &request);

} // namespace fennick::picture
