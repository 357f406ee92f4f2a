#pragma once

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Decodes and encodes HEIC, HEIF and AVIF with libheif. One thread at a time.
namespace fennick::picture {

struct HeifHeader {
  PixelSize upright;         // with the file's own rotation, mirroring and cropping applied
  std::int64_t pictures = 1; // top-level pictures; thumbnails, depth maps and tiles do not count
};

[[nodiscard]] std::optional<HeifHeader> readHeifHeader(Bytes file);

// Interleaved RGB or RGBA, upright.
struct HeifRaster {
  int width = 0;
  int height = 0;
  int bands = 3;
  int bits = 8;           // significant bits of a sample; above 8 a sample takes two bytes, lowest first
  bool displayP3 = false; // the file states Display P3 by number, without a profile
  std::vector<unsigned char> pixels; // rows without padding
};

[[nodiscard]] std::optional<HeifRaster> decodeHeif(Bytes file, Damage damage);

// Like decodeHeif, but halves the size repeatedly down to the smallest whose longer side is at least
// `longEdge`. Only for pictures of 8 bits; returns nullopt for all others.
[[nodiscard]] std::optional<HeifRaster> decodeHeifReduced(Bytes file, std::int64_t longEdge, Damage damage);

// Returns whether this computer's libheif has an encoder for HEIC.
[[nodiscard]] bool encodesHeic();

// Encodes 8-bit RGB or RGBA as a HEIC file with the blocks (IPTC is not supported). `quality` from 0 to 1 has
// the scale of JPEG: the same number gives a similar look with a quarter fewer bytes. Returns an empty text
// if the encoder refuses.
[[nodiscard]] std::string encodeHeic(const unsigned char *pixels, int width, int height, int bands,
                                     double quality, const Metadata &metadata);

} // namespace fennick::picture
