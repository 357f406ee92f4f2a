#pragma once

#include "FennickCore/Imaging/Picture/ColourCoding.h"

#include <vips/vips8>

// Converts pictures beyond the range of a JPEG in sRGB for thumbnails. Throws vips::VError. One thread at a
// time.
namespace fennick::picture {

// Returns `image`, whose 8- or 16-bit samples are coded as `coding`, in sRGB with 8 bits. HDR is mapped to an
// SDR white of 203 cd/m2 (ITU-R BT.2408) by the curve of ITU-R BT.2390, wide primaries are converted and
// colours outside of sRGB are clipped. Transparency is dropped. For pictures that were reduced.
[[nodiscard]] vips::VImage toneMapped(const vips::VImage &image, const ColourCoding &coding);

[[nodiscard]] bool isLab(const vips::VImage &image);

// Returns whether the samples are anything but 8 or 16 bits of an unsigned integer; Lab does not count.
[[nodiscard]] bool hasUnusualSamples(const vips::VImage &image);

// Returns an image with such samples in sRGB with 8 bits. Floating-point colours without a profile are linear
// light in the primaries of sRGB, where 1 is white; brighter values are mapped like HDR. All other samples
// are scaled from their smallest to their largest value.
[[nodiscard]] vips::VImage withOrdinarySamples(const vips::VImage &image);

} // namespace fennick::picture
