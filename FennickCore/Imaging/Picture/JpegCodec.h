#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// JPEG pixels by libjpeg-turbo. One thread at a time.
namespace fennick::picture {

struct JpegHeader {
  int width = 0; // in pixels
  int height = 0;
  bool gray = false;
  bool threeColours = false; // YCbCr or gray: what the functions below decode
};

[[nodiscard]] std::optional<JpegHeader> readJpegHeader(Bytes file);

enum class Damage { refuse, tolerate }; // what to do with a picture of which only a part can be decoded

// Interleaved 8-bit pixels, 1 (gray) or 3 (RGB) a pixel, rows without padding.
struct RasterRGB {
  int width = 0;
  int height = 0;
  int bands = 3;
  std::vector<unsigned char> pixels;
};

// The picture reduced while decoding, by eighths, to the smallest size whose longer side is at least
// `longEdge`; full size when that is larger. Gray stays gray.
[[nodiscard]] std::optional<RasterRGB> decodeJpeg(Bytes file, int longEdge, Damage damage);

// One of the three planes of a picture in YCbCr.
struct Plane {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> pixels; // rows without padding
};

// Luma and, unless gray, two chroma planes, whatever their size.
struct PlanarPicture {
  std::array<Plane, 3> planes;
  bool gray = false;
};

// As decodeJpeg, without leaving the colour space of the file.
[[nodiscard]] std::optional<PlanarPicture> decodeJpegPlanes(Bytes file, int longEdge, Damage damage);

// `quality` from 0 to 1. Colours are stored at half resolution below 0.9. Empty when the encoder refuses.
[[nodiscard]] std::string encodeJpeg(const unsigned char *pixels, int width, int height, int bands,
                                     double quality);
// Chroma planes have half the size of luma, rounded up.
[[nodiscard]] std::string encodeJpegPlanes(const PlanarPicture &picture, double quality);

} // namespace fennick::picture
