#pragma once

#include "FennickCore/Imaging/Picture/ColourCoding.h"

#include <vips/vips8>

// Makes pictures that go beyond what a JPEG in sRGB can hold fit to be looked at, for thumbnails. Throws
// vips::VError. One thread at a time.
namespace fennick::picture {

// `image`, whose 8- or 16-bit samples are coded as `coding` says, in sRGB with 8 bits. HDR is mapped to an
// SDR white of 203 cd/m2 (ITU-R BT.2408) by the curve of ITU-R BT.2390, wide primaries are converted and what
// is still outside of sRGB is cut off. Transparency is dropped. Meant for pictures that have been reduced.
[[nodiscard]] vips::VImage toneMapped(const vips::VImage &image, const ColourCoding &coding);

[[nodiscard]] bool isLab(const vips::VImage &image);

// Whether the samples are neither 8 nor 16 bits of an unsigned whole number; those of Lab do not count.
[[nodiscard]] bool hasUnusualSamples(const vips::VImage &image);

// An image with such samples in sRGB with 8 bits. Floating-point colours without a profile are
// linear light in the primaries of sRGB, where 1 is white; what is brighter is mapped as HDR is. All other
// samples are stretched from their smallest to their largest value.
[[nodiscard]] vips::VImage withOrdinarySamples(const vips::VImage &image);

} // namespace fennick::picture
