#include "FennickCore/Imaging/Picture/JpegCodec.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/JpegReader.h"

#include <turbojpeg.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <span>

namespace fennick::picture {

namespace {

constexpr double kFullColourQuality = 0.9; // from this quality on colours keep their full resolution

using Codec = std::unique_ptr<void, decltype(&::tjDestroy)>;

Codec decompressor() { return {::tjInitDecompress(), &::tjDestroy}; }
Codec compressor() { return {::tjInitCompress(), &::tjDestroy}; }

// The decoder scales by eighths at a cost in proportion to the resulting pixels.
int eighthsFor(int stored, int longEdge) {
  for (int eighths = 1; eighths < 8; ++eighths)
    if ((stored * eighths + 7) / 8 >= longEdge)
      return eighths;
  return 8;
}

// Returns the colours to decode to; nullopt for two components, or more than four.
std::optional<J_COLOR_SPACE> coloursFor(const jpeg_decompress_struct &info) {
  switch (info.jpeg_color_space) {
  case JCS_GRAYSCALE:
    return JCS_GRAYSCALE;
  case JCS_YCbCr:
  case JCS_RGB:
    return JCS_RGB;
  case JCS_CMYK:
  case JCS_YCCK:
    return JCS_CMYK;
  default:
    return std::nullopt;
  }
}

// Photoshop, practically the only source of CMYK, stores it inverted, and all viewers expect that.
void invert(std::vector<unsigned char> &pixels) {
  for (unsigned char &sample : pixels)
    sample = static_cast<unsigned char>(255 - sample);
}

std::size_t bytesOf(int width, int height) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

bool readPixels(JpegReader &reader, JpegRaster &raster) {
  const std::size_t pitch = bytesOf(raster.width, raster.bands);
  std::vector<JSAMPROW> rows;
  rows.reserve(static_cast<std::size_t>(raster.height));
  for (std::size_t row = 0; row < static_cast<std::size_t>(raster.height); ++row)
    rows.push_back(raster.pixels.data() + row * pitch);
  while (!reader.isDone()) {
    const std::span left = std::span(rows).subspan(reader.info().output_scanline);
    if (!reader.readRows(left.data(), static_cast<JDIMENSION>(left.size())))
      return false;
  }
  return true;
}

// Returns whether a decoding produced at least some pixels.
bool gavePixels(const Codec &codec, int status) {
  return status == 0 || ::tjGetErrorCode(codec.get()) == TJERR_WARNING;
}

const unsigned char *raw(Bytes file) { return reinterpret_cast<const unsigned char *>(file.data()); }

struct PlanarHeader {
  int width = 0;
  int height = 0;
  int subsampling = 0;
  int colourSpace = 0;
};

std::optional<PlanarHeader> planarHeaderOf(const Codec &codec, Bytes file) {
  PlanarHeader header;
  if (!codec ||
      !gavePixels(codec, ::tjDecompressHeader3(codec.get(), raw(file), file.size(), &header.width,
                                               &header.height, &header.subsampling, &header.colourSpace)))
    return std::nullopt;
  const bool isPlanar = header.colourSpace == TJCS_YCbCr || header.colourSpace == TJCS_GRAY;
  return isPlanar && header.subsampling >= 0 ? std::optional(header) : std::nullopt;
}

// Returns planes of the given size for the picture, or nullopt if one would be empty.
std::optional<PlanarPicture> emptyPlanes(const PlanarHeader &header, int width, int height) {
  PlanarPicture picture;
  picture.gray = header.colourSpace == TJCS_GRAY;
  for (int i = 0; i < (picture.gray ? 1 : 3); ++i) {
    Plane &plane = picture.planes.at(static_cast<std::size_t>(i));
    plane.width = ::tjPlaneWidth(i, width, header.subsampling);
    plane.height = ::tjPlaneHeight(i, height, header.subsampling);
    if (plane.width <= 0 || plane.height <= 0)
      return std::nullopt;
    plane.pixels.resize(bytesOf(plane.width, plane.height));
  }
  return picture;
}

// Takes over an encoded picture from the library's memory.
std::string taken(unsigned char *buffer, unsigned long size, int status) {
  const std::unique_ptr<unsigned char, decltype(&::tjFree)> owned(buffer, &::tjFree);
  if (status != 0 || buffer == nullptr)
    return {};
  return {reinterpret_cast<const char *>(buffer), size};
}

int percent(double quality) { return std::clamp(static_cast<int>(std::lround(quality * 100)), 1, 100); }

} // namespace

std::optional<PixelSize> jpegSize(Bytes file) {
  JpegReader reader(file);
  if (reader.readHeader())
    return PixelSize{.width = reader.info().image_width, .height = reader.info().image_height};
  return jpegFrameSize(textOf(file));
}

std::optional<JpegRaster> decodeJpeg(Bytes file, int longEdge, Damage damage) {
  JpegReader reader(file);
  const auto colours = reader.readHeader() ? coloursFor(reader.info()) : std::nullopt;
  const auto stored = static_cast<int>(std::max(reader.info().image_width, reader.info().image_height));
  if (!colours || !reader.start(eighthsFor(stored, longEdge), *colours))
    return std::nullopt;
  JpegRaster raster{.width = static_cast<int>(reader.info().output_width),
                    .height = static_cast<int>(reader.info().output_height),
                    .bands = reader.info().output_components,
                    .pixels = {}};
  raster.pixels.resize(bytesOf(raster.width, raster.height) * static_cast<std::size_t>(raster.bands));
  if (!readPixels(reader, raster) || (damage == Damage::refuse && !reader.isWhole()))
    return std::nullopt;
  if (*colours == JCS_CMYK)
    invert(raster.pixels);
  return raster;
}

std::optional<PlanarPicture> decodeJpegPlanes(Bytes file, int longEdge) {
  const Codec codec = decompressor();
  const auto header = planarHeaderOf(codec, file);
  if (!header)
    return std::nullopt;
  const tjscalingfactor factor{eighthsFor(std::max(header->width, header->height), longEdge), 8};
  const int width = TJSCALED(header->width, factor);
  const int height = TJSCALED(header->height, factor);
  auto picture = emptyPlanes(*header, width, height);
  if (!picture)
    return std::nullopt;
  std::array<unsigned char *, 3> rows{};
  std::array<int, 3> strides{};
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows.at(i) = picture->planes.at(i).pixels.data();
    strides.at(i) = picture->planes.at(i).width;
  }
  const int status = ::tjDecompressToYUVPlanes(codec.get(), raw(file), file.size(), rows.data(), width,
                                               strides.data(), height, TJFLAG_LIMITSCANS);
  if (!gavePixels(codec, status))
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

namespace {

// Repeats the last column and row if a side is odd, since TurboJPEG reads blocks of 2 x 2 pixels.
Plane inWholeBlocks(const Plane &plane) {
  Plane whole{.width = (plane.width + 1) / 2 * 2, .height = (plane.height + 1) / 2 * 2, .pixels = {}};
  const auto width = static_cast<std::size_t>(plane.width);
  whole.pixels.reserve(static_cast<std::size_t>(whole.width) * static_cast<std::size_t>(whole.height));
  for (int y = 0; y < whole.height; ++y) {
    const auto row = std::span(plane.pixels)
                         .subspan(static_cast<std::size_t>(std::min(y, plane.height - 1)) * width, width);
    whole.pixels.insert(whole.pixels.end(), row.begin(), row.end());
    if (whole.width > plane.width)
      whole.pixels.push_back(row.back());
  }
  return whole;
}

} // namespace

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
  const bool isOdd = luma.width % 2 != 0 || luma.height % 2 != 0;
  const Plane whole = isOdd && !picture.gray ? inWholeBlocks(luma) : Plane{};
  if (!whole.pixels.empty()) {
    rows[0] = whole.pixels.data();
    strides[0] = whole.width;
  }
  unsigned char *buffer = nullptr;
  unsigned long size = 0;
  const int status =
      ::tjCompressFromYUVPlanes(codec.get(), rows.data(), luma.width, strides.data(), luma.height,
                                picture.gray ? TJSAMP_GRAY : TJSAMP_420, &buffer, &size, percent(quality), 0);
  return taken(buffer, size, status);
}

} // namespace fennick::picture
