#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <vips/vips8>

#include <cstdint>
#include <string>

// Decoded pictures in libvips. libvips throws vips::VError, which is caught where a request is answered. One
// thread at a time.
namespace fennick::picture {

struct DecodedPicture {
  vips::VImage image;    // with its colour profile attached, if it has one
  std::int64_t turn = 1; // the orientation that has yet to be applied
};

// Decodes the file's first picture, at least `longEdge` pixels on its longer side or at full size; formats
// that can be reduced while decoding are. Throws if it cannot be decoded, also if it is damaged and `damage`
// refuses that.
[[nodiscard]] DecodedPicture decodePicture(Bytes file, PictureType type, std::int64_t longEdge,
                                           Damage damage);

// Returns `image` rotated and mirrored according to orientation `turn` (1 to 8; other values are 1).
[[nodiscard]] vips::VImage upright(const vips::VImage &image, std::int64_t turn);
// Returns the image in memory with a longer side of at most `longEdge`.
[[nodiscard]] vips::VImage reduced(const vips::VImage &image, std::int64_t longEdge);
// Converts to gray or RGB (keeping transparency) with 8 or 16 bits a sample; other colour spaces become sRGB.
// The attached profile is the one of the colours.
[[nodiscard]] vips::VImage inOrdinaryColours(const vips::VImage &image);
// Converts to 8 bits a sample.
[[nodiscard]] vips::VImage in8Bits(const vips::VImage &image);
// Converts to RGB without transparency, in sRGB, 8 bits.
[[nodiscard]] vips::VImage forScreen(const vips::VImage &image);
// Blends with white.
[[nodiscard]] vips::VImage withoutTransparency(const vips::VImage &image);
[[nodiscard]] vips::VImage inSRGB(const vips::VImage &image);

// Returns the attached colour profile; empty if there is none.
[[nodiscard]] std::string colourProfile(const vips::VImage &image);
void setColourProfile(vips::VImage &image, const std::string &profile); // empty: removes it

} // namespace fennick::picture
