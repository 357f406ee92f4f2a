#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// HEIC, HEIF and AVIF pixels by libheif. One thread at a time.
namespace fennick::picture {

struct HeifHeader {
  PixelSize upright; // with the file's own rotation, mirroring and cropping applied
  std::int64_t pictures =
      1; // pictures that stand for themselves; thumbnails, depth maps and tiles do not count
};

[[nodiscard]] std::optional<HeifHeader> readHeifHeader(Bytes file);

// Interleaved RGB or RGBA, upright.
struct HeifRaster {
  int width = 0;
  int height = 0;
  int bands = 3;
  int bits = 8;           // significant bits of a sample; above 8 a sample takes two bytes, lowest first
  bool displayP3 = false; // colours are Display P3 by number, without a profile
  std::vector<unsigned char> pixels; // rows without padding
};

[[nodiscard]] std::optional<HeifRaster> decodeHeif(Bytes file, Damage damage);

// As decodeHeif, reduced by halves to the smallest size whose longer side is at least `longEdge`; full size
// when that is larger. Only for pictures of 8 bits; nothing for all others.
[[nodiscard]] std::optional<HeifRaster> decodeHeifReduced(Bytes file, std::int64_t longEdge, Damage damage);

// Whether this computer's libheif has an encoder for HEIC.
[[nodiscard]] bool encodesHeic();

// 8-bit RGB or RGBA into a HEIC file with the blocks (IPTC has no place there). `quality` from 0 to 1, on the
// scale of JPEG: a picture at the same number looks about the same and takes a quarter fewer bytes. Empty
// when the encoder refuses.
[[nodiscard]] std::string encodeHeic(const unsigned char *pixels, int width, int height, int bands,
                                     double quality, const Metadata &metadata);

} // namespace fennick::picture
