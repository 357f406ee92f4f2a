#include "FennickCore/Imaging/Picture/JpegCodec.h"

#include <turbojpeg.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace fennick::picture {

namespace {

constexpr double kFullColourQuality = 0.9; // from here on colours keep their full resolution

using Codec = std::unique_ptr<void, decltype(&::tjDestroy)>;

Codec decompressor() { return {::tjInitDecompress(), &::tjDestroy}; }
Codec compressor() { return {::tjInitCompress(), &::tjDestroy}; }

const unsigned char *raw(Bytes file) { return reinterpret_cast<const unsigned char *>(file.data()); }

struct Header {
  int width = 0;
  int height = 0;
  int subsampling = 0;
  int colourSpace = 0;
};

std::optional<Header> headerOf(const Codec &codec, Bytes file) {
  Header header;
  if (!codec || ::tjDecompressHeader3(codec.get(), raw(file), file.size(), &header.width, &header.height,
                                      &header.subsampling, &header.colourSpace) != 0)
    return std::nullopt;
  return header;
}

bool isThreeColours(const Header &header) {
  return (header.colourSpace == TJCS_YCbCr || header.colourSpace == TJCS_GRAY) && header.subsampling >= 0;
}

// libjpeg decodes at eighths of the size for the price of the pixels it gives.
tjscalingfactor scaleFor(const Header &header, int longEdge) {
  const int stored = std::max(header.width, header.height);
  for (int eighths = 1; eighths < 8; ++eighths)
    if (const tjscalingfactor factor{eighths, 8}; TJSCALED(stored, factor) >= longEdge)
      return factor;
  return {8, 8};
}

// A warning means that the data is damaged or cut short; the rest of the picture is gray then.
bool decoded(const Codec &codec, int status, Damage damage) {
  return status == 0 || (damage == Damage::tolerate && ::tjGetErrorCode(codec.get()) == TJERR_WARNING);
}

// Pictures with hundreds of refinement scans keep a decoder busy for minutes.
constexpr int kFlags = TJFLAG_LIMITSCANS;

// What the library allocated for an encoded picture.
std::string taken(unsigned char *buffer, unsigned long size, int status) {
  const std::unique_ptr<unsigned char, decltype(&::tjFree)> owned(buffer, &::tjFree);
  if (status != 0 || buffer == nullptr)
    return {};
  return {reinterpret_cast<const char *>(buffer), size};
}

int percent(double quality) { return std::clamp(static_cast<int>(std::lround(quality * 100)), 1, 100); }

} // namespace

std::optional<JpegHeader> readJpegHeader(Bytes file) {
  const auto header = headerOf(decompressor(), file);
  if (!header)
    return std::nullopt;
  return JpegHeader{.width = header->width,
                    .height = header->height,
                    .gray = header->colourSpace == TJCS_GRAY,
                    .threeColours = isThreeColours(*header)};
}

std::optional<RasterRGB> decodeJpeg(Bytes file, int longEdge, Damage damage) {
  const Codec codec = decompressor();
  const auto header = headerOf(codec, file);
  if (!header || !isThreeColours(*header))
    return std::nullopt;
  const auto factor = scaleFor(*header, longEdge);
  const bool gray = header->colourSpace == TJCS_GRAY;
  RasterRGB raster{.width = TJSCALED(header->width, factor),
                   .height = TJSCALED(header->height, factor),
                   .bands = gray ? 1 : 3,
                   .pixels = {}};
  const int pitch = raster.width * raster.bands;
  raster.pixels.resize(static_cast<std::size_t>(pitch) * static_cast<std::size_t>(raster.height));
  const int status = ::tjDecompress2(codec.get(), raw(file), file.size(), raster.pixels.data(), raster.width,
                                     pitch, raster.height, gray ? TJPF_GRAY : TJPF_RGB, kFlags);
  if (!decoded(codec, status, damage))
    return std::nullopt;
  return raster;
}

std::optional<PlanarPicture> decodeJpegPlanes(Bytes file, int longEdge, Damage damage) {
  const Codec codec = decompressor();
  const auto header = headerOf(codec, file);
  if (!header || !isThreeColours(*header))
    return std::nullopt;
  const auto factor = scaleFor(*header, longEdge);
  const int width = TJSCALED(header->width, factor);
  const int height = TJSCALED(header->height, factor);
  PlanarPicture picture;
  picture.gray = header->colourSpace == TJCS_GRAY;
  std::array<unsigned char *, 3> rows{};
  std::array<int, 3> strides{};
  for (int i = 0; i < (picture.gray ? 1 : 3); ++i) {
    const auto index = static_cast<std::size_t>(i);
    Plane &plane = picture.planes.at(index);
    plane.width = ::tjPlaneWidth(i, width, header->subsampling);
    plane.height = ::tjPlaneHeight(i, height, header->subsampling);
    if (plane.width <= 0 || plane.height <= 0)
      return std::nullopt;
    plane.pixels.resize(static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.height));
    rows.at(index) = plane.pixels.data();
    strides.at(index) = plane.width;
  }
  const int status = ::tjDecompressToYUVPlanes(codec.get(), raw(file), file.size(), rows.data(), width,
                                               strides.data(), height, kFlags);
  if (!decoded(codec, status, damage))
    return std::nullopt;
  return picture;
}

std::string encodeJpeg(const unsigned char *pixels, int width, int height, int bands, double quality) {
  const Codec codec = compressor();
  if (!codec)
    return {};
  unsigned char *buffer = nullptr;
  unsigned long size = 0;
  const bool gray = bands == 1;
  const int colours = quality < kFullColourQuality ? TJSAMP_420 : TJSAMP_444;
  const int subsampling = gray ? TJSAMP_GRAY : colours;
  const int status =
      ::tjCompress2(codec.get(), pixels, width, width * bands, height, gray ? TJPF_GRAY : TJPF_RGB, &buffer,
                    &size, subsampling, percent(quality), TJFLAG_ACCURATEDCT);
  return taken(buffer, size, status);
}

std::string encodeJpegPlanes(const PlanarPicture &picture, double quality) {
  const Codec codec = compressor();
  if (!codec)
    return {};
  std::array<const unsigned char *, 3> rows{};
  std::array<int, 3> strides{};
  for (std::size_t i = 0; i < (picture.gray ? 1U : 3U); ++i) {
    rows.at(i) = picture.planes.at(i).pixels.data();
    strides.at(i) = picture.planes.at(i).width;
  }
  const Plane &luma = picture.planes[0];
  unsigned char *buffer = nullptr;
  unsigned long size = 0;
  const int status =
      ::tjCompressFromYUVPlanes(codec.get(), rows.data(), luma.width, strides.data(), luma.height,
                                picture.gray ? TJSAMP_GRAY : TJSAMP_420, &buffer, &size, percent(quality), 0);
  return taken(buffer, size, status);
}

} // namespace fennick::picture
