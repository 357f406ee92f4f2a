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

constexpr double kFullColourQuality = 0.9; // from here on colours keep their full resolution

using Codec = std::unique_ptr<void, decltype(&::tjDestroy)>;

Codec compressor() { return {::tjInitCompress(), &::tjDestroy}; }

// libjpeg decodes at eighths of the size for the price of the pixels it gives.
int eighthsFor(const jpeg_decompress_struct &info, int longEdge) {
  const auto stored = static_cast<int>(std::max(info.image_width, info.image_height));
  for (int eighths = 1; eighths < 8; ++eighths)
    if ((stored * eighths + 7) / 8 >= longEdge)
      return eighths;
  return 8;
}

// What pixels of the file's colour space are decoded to; nothing for two components, or more than four.
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

// Photoshop, as good as the only source of CMYK, stores it inverted, and all viewers take it for that.
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

bool isPlanar(const jpeg_decompress_struct &info) {
  const bool isKnown = info.jpeg_color_space == JCS_GRAYSCALE || info.jpeg_color_space == JCS_YCbCr;
  const jpeg_component_info &luma = info.comp_info[0];
  return isKnown && luma.h_samp_factor == info.max_h_samp_factor &&
         luma.v_samp_factor == info.max_v_samp_factor;
}

// Takes one row of MCUs after another: whole blocks, which may reach beyond the edges of a plane.
class BlockRows {
public:
  explicit BlockRows(const jpeg_component_info &component)
      : width_((static_cast<int>(component.width_in_blocks) + component.h_samp_factor) *
               component.DCT_scaled_size),
        height_(component.v_samp_factor * component.DCT_scaled_size), samples_(bytesOf(width_, height_)) {
    for (int row = 0; row < height_; ++row)
      rows_.push_back(samples_.data() + bytesOf(width_, row));
  }
  BlockRows(BlockRows &&) = default; // the rows lie on the heap
  BlockRows(const BlockRows &) = delete;
  JSAMPARRAY rows() { return rows_.data(); }

  // What lies inside `plane`, whose rows before the `index`th row of MCUs are there.
  void copyTo(Plane &plane, int index) const {
    const int first = index * height_;
    for (int row = 0; row < std::min(height_, plane.height - first); ++row)
      std::copy_n(rows_[static_cast<std::size_t>(row)], plane.width,
                  plane.pixels.data() + bytesOf(plane.width, first + row));
  }

private:
  int width_;
  int height_;
  std::vector<unsigned char> samples_;
  std::vector<JSAMPROW> rows_;
};

Plane planeFor(const jpeg_component_info &component) {
  Plane plane{.width = static_cast<int>(component.downsampled_width),
              .height = static_cast<int>(component.downsampled_height),
              .pixels = {}};
  plane.pixels.resize(bytesOf(plane.width, plane.height));
  return plane;
}

bool readPlanes(JpegReader &reader, PlanarPicture &picture) {
  const std::span components(reader.info().comp_info, picture.gray ? 1U : 3U);
  std::vector<BlockRows> blocks(components.begin(), components.end());
  std::array<JSAMPARRAY, 3> rows{};
  std::ranges::transform(blocks, rows.begin(), &BlockRows::rows);
  for (int index = 0; !reader.isDone(); ++index) {
    if (!reader.readPlanes(rows.data()))
      return false;
    for (std::size_t i = 0; i < blocks.size(); ++i)
      blocks[i].copyTo(picture.planes.at(i), index);
  }
  return true;
}

// What the library allocated for an encoded picture.
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
  if (!colours || !reader.start({.eighths = eighthsFor(reader.info(), longEdge), .colours = *colours}))
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

std::optional<PlanarPicture> decodeJpegPlanes(Bytes file, int longEdge, Damage damage) {
  JpegReader reader(file);
  if (!reader.readHeader() || !isPlanar(reader.info()) ||
      !reader.start({.eighths = eighthsFor(reader.info(), longEdge),
                     .colours = reader.info().jpeg_color_space,
                     .planes = true}))
    return std::nullopt;
  PlanarPicture picture;
  picture.gray = reader.info().num_components == 1;
  std::ranges::transform(std::span(reader.info().comp_info, picture.gray ? 1U : 3U), picture.planes.begin(),
                         &planeFor);
  if (!readPlanes(reader, picture) || (damage == Damage::refuse && !reader.isWhole()))
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
