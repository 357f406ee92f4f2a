#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <vips/vips8>

#include <cstdint>
#include <string>

// Decoded pictures as libvips holds them. libvips reports by vips::VError, which is caught where a request is
// answered. One thread at a time.
namespace fennick::picture {

struct DecodedPicture {
  vips::VImage image;    // with its colour profile attached, if it has one
  std::int64_t turn = 1; // the orientation that has still to be applied
};

// The file's first picture, at least `longEdge` pixels on its longer side or at full size: formats that can
// be reduced while decoding are. Throws when it cannot be decoded, also when it is damaged and `damage`
// refuses.
[[nodiscard]] DecodedPicture decodePicture(Bytes file, PictureType type, std::int64_t longEdge,
                                           Damage damage);

// `image` turned and mirrored as orientation `turn` (1 to 8, anything else is 1) asks for.
[[nodiscard]] vips::VImage upright(const vips::VImage &image, std::int64_t turn);
// Reduced so that the longer side is `longEdge`, in memory; as it is when it is not longer.
[[nodiscard]] vips::VImage reduced(const vips::VImage &image, std::int64_t longEdge);
// Gray or RGB (transparency kept), 8 or 16 bits a sample, other colour spaces converted to sRGB. The profile
// attached afterwards is the one the colours are in.
[[nodiscard]] vips::VImage inOrdinaryColours(const vips::VImage &image);
// 8 bits a sample.
[[nodiscard]] vips::VImage in8Bits(const vips::VImage &image);
// RGB without transparency, in sRGB whatever the profile says, 8 bits.
[[nodiscard]] vips::VImage forScreen(const vips::VImage &image);
// On white.
[[nodiscard]] vips::VImage withoutTransparency(const vips::VImage &image);
[[nodiscard]] vips::VImage inSRGB(const vips::VImage &image);

// The attached colour profile; empty: none.
[[nodiscard]] std::string colourProfile(const vips::VImage &image);
void setColourProfile(vips::VImage &image, const std::string &profile); // empty: removes it

} // namespace fennick::picture
