#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

// Decodes and encodes JPEG with libjpeg-turbo. One thread at a time.
namespace fennick::picture {

// Returns the size that the file states, also for kinds of JPEG that cannot be decoded here (12 bits,
// lossless).
[[nodiscard]] std::optional<PixelSize> jpegSize(Bytes file);

enum class Damage { refuse, tolerate }; // how to treat a picture of which only a part can be decoded

// Interleaved 8-bit pixels, rows without padding. Of CMYK, 255 is full ink.
struct JpegRaster {
  int width = 0;
  int height = 0;
  int bands = 3; // 1 (gray), 3 (RGB) or 4 (CMYK)
  std::vector<unsigned char> pixels;
};

// Decodes the picture and reduces it by eighths to the smallest size whose longer side is at least
// `longEdge`; returns full size if that is larger. Gray stays gray.
[[nodiscard]] std::optional<JpegRaster> decodeJpeg(Bytes file, int longEdge, Damage damage);

// One of the three planes of a picture in YCbCr.
struct Plane {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> pixels; // rows without padding
};

// Luma and, unless gray, two chroma planes of any size.
struct PlanarPicture {
  std::array<Plane, 3> planes;
  bool gray = false;
};

// Like decodeJpeg for a damaged picture that is tolerated, but faster, because it keeps the colour space of
// the file. Returns nullopt for colours other than gray and YCbCr and for unusual sampling factors.
[[nodiscard]] std::optional<PlanarPicture> decodeJpegPlanes(Bytes file, int longEdge);

// `quality` from 0 to 1. Colours are stored at half resolution below 0.9. Returns an empty text if the
// encoder refuses.
[[nodiscard]] std::string encodeJpeg(const unsigned char *pixels, int width, int height, int bands,
                                     double quality);
// Chroma planes have half the size of luma, rounded up.
[[nodiscard]] std::string encodeJpegPlanes(const PlanarPicture &picture, double quality);

} // namespace fennick::picture
