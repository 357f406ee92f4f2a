#include "FennickCore/Imaging/Picture/HeifCodec.h"

#include <libheif/heif.h>
#include <libyuv.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <span>

namespace fennick::picture {

namespace {

template <auto release>
struct Release {
  template <typename T>
  void operator()(T *object) const {
    release(object);
  }
};
using Context = std::unique_ptr<heif_context, Release<&::heif_context_free>>;
using Handle = std::unique_ptr<heif_image_handle, Release<&::heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Release<&::heif_image_release>>;
using Encoder = std::unique_ptr<heif_encoder, Release<&::heif_encoder_release>>;
using DecodingOptions = std::unique_ptr<heif_decoding_options, Release<&::heif_decoding_options_free>>;
using Nclx = std::unique_ptr<heif_color_profile_nclx, Release<&::heif_nclx_color_profile_free>>;

bool good(const heif_error &error) { return error.code == heif_error_Ok; }

Context opened(Bytes file) {
  Context context(::heif_context_alloc());
  if (!context)
    return nullptr;
  ::heif_context_set_maximum_image_size_limit(context.get(), static_cast<int>(ImageLimits::kMaxSide));
  if (!good(::heif_context_read_from_memory_without_copy(context.get(), file.data(), file.size(), nullptr)))
    return nullptr;
  return context;
}

Handle primary(const Context &context) {
  heif_image_handle *handle = nullptr;
  if (!context || !good(::heif_context_get_primary_image_handle(context.get(), &handle)))
    return nullptr;
  return Handle(handle);
}

bool isDisplayP3(const Handle &handle) {
  if (::heif_image_handle_get_raw_color_profile_size(handle.get()) > 0)
    return false;
  heif_color_profile_nclx *colours = nullptr;
  if (!good(::heif_image_handle_get_nclx_color_profile(handle.get(), &colours)))
    return false;
  const Nclx owned(colours);
  return owned->color_primaries == heif_color_primaries_SMPTE_EG_432_1;
}

heif_chroma chromaFor(int bands, int bits) {
  if (bits > 8)
    return bands == 4 ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE;
  return bands == 4 ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
}

Image decoded(const Handle &handle, int bands, int bits, Damage damage) {
  const DecodingOptions options(::heif_decoding_options_alloc());
  if (!options)
    return nullptr;
  if (options->version >= 3)
    options->strict_decoding = damage == Damage::refuse ? 1 : 0;
  heif_image *image = nullptr;
  if (!good(::heif_decode_image(handle.get(), &image, heif_colorspace_RGB, chromaFor(bands, bits),
                                options.get())))
    return nullptr;
  return Image(image);
}

// Copies the rows of a plane without their padding.
void copyRows(const Image &image, HeifRaster &raster) {
  int stride = 0;
  const auto *plane = ::heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
  raster.width = ::heif_image_get_width(image.get(), heif_channel_interleaved);
  raster.height = ::heif_image_get_height(image.get(), heif_channel_interleaved);
  if (plane == nullptr || raster.width <= 0 || raster.height <= 0)
    return;
  const auto row = static_cast<std::size_t>(raster.width) * static_cast<std::size_t>(raster.bands) *
                   (raster.bits > 8 ? 2U : 1U);
  raster.pixels.resize(row * static_cast<std::size_t>(raster.height));
  for (std::size_t y = 0; y < static_cast<std::size_t>(raster.height); ++y)
    std::copy_n(plane + y * static_cast<std::size_t>(stride), row, raster.pixels.data() + y * row);
}

// Returns the description of a picture without pixels.
HeifRaster described(const Handle &handle) {
  return {.bands = ::heif_image_handle_has_alpha_channel(handle.get()) != 0 ? 4 : 3,
          .bits = std::max(8, ::heif_image_handle_get_luma_bits_per_pixel(handle.get())),
          .displayP3 = isDisplayP3(handle),
          .pixels = {}};
}

// Pixels of four bytes, transparency last; borrowed.
struct Quads {
  unsigned char *pixels = nullptr;
  int stride = 0;
  int width = 0;
  int height = 0;
};

Quads quadsOf(const Image &image) {
  Quads quads{.width = ::heif_image_get_width(image.get(), heif_channel_interleaved),
              .height = ::heif_image_get_height(image.get(), heif_channel_interleaved)};
  quads.pixels = ::heif_image_get_plane(image.get(), heif_channel_interleaved, &quads.stride);
  return quads;
}

std::vector<unsigned char> halved(const Quads &from, int width, int height) {
  std::vector<unsigned char> half(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
  libyuv::ARGBScale(from.pixels, from.stride, width * 2, height * 2, half.data(), width * 4, width, height,
                    libyuv::kFilterBox);
  return half;
}

// Halves the size down to the smallest whose longer side is at least `longEdge`; `owner` holds the pixels
// unless the size is that of `quads`. An odd row or column at the edge is left out.
Quads reducedByHalves(Quads quads, std::int64_t longEdge, std::vector<unsigned char> &owner) {
  while (std::max(quads.width, quads.height) / 2 >= longEdge && std::min(quads.width, quads.height) > 1) {
    const int width = quads.width / 2;
    const int height = quads.height / 2;
    owner = halved(quads, width, height);
    quads = {.pixels = owner.data(), .stride = width * 4, .width = width, .height = height};
  }
  return quads;
}

// Transparent pixels must not affect the colour of their neighbours when they are merged.
void reduceInto(HeifRaster &raster, const Quads &quads, std::int64_t longEdge) {
  const bool transparent = raster.bands == 4;
  if (transparent)
    libyuv::ARGBAttenuate(quads.pixels, quads.stride, quads.pixels, quads.stride, quads.width, quads.height);
  std::vector<unsigned char> owner;
  const Quads small = reducedByHalves(quads, longEdge, owner);
  raster.width = small.width;
  raster.height = small.height;
  const int row = small.width * raster.bands;
  raster.pixels.resize(static_cast<std::size_t>(row) * static_cast<std::size_t>(small.height));
  const auto write = transparent ? &libyuv::ARGBUnattenuate : &libyuv::ARGBToRGB24; // keeps the bytes' order
  write(small.pixels, small.stride, raster.pixels.data(), row, small.width, small.height);
}

// The setting at which the encoder has about the error of a JPEG of that quality, measured with photographs;
// slightly higher from 0.85 on, so that no difference is visible.
int heicQuality(double quality) {
  struct Point {
    double jpeg;
    double heic;
  };
  static constexpr std::array kScale{Point{0.1, 15},  Point{0.3, 28},  Point{0.5, 34}, Point{0.7, 42},
                                     Point{0.85, 54}, Point{0.93, 68}, Point{1.0, 100}};
  const double wanted = std::clamp(quality, kScale.front().jpeg, kScale.back().jpeg);
  std::size_t upper = 1;
  while (kScale.at(upper).jpeg < wanted)
    ++upper;
  const Point &from = kScale.at(upper - 1);
  const Point &to = kScale.at(upper);
  return static_cast<int>(
      std::lround(std::lerp(from.heic, to.heic, (wanted - from.jpeg) / (to.jpeg - from.jpeg))));
}

// The fastest preset needs a tenth more bytes than the default and takes two seconds instead of seventeen for
// 12 million pixels.
bool configure(const Encoder &encoder, double quality) {
  // If libheif lacks one of these parameters it uses its own value.
  ::heif_encoder_set_parameter_string(encoder.get(), "preset", "ultrafast");
  ::heif_encoder_set_parameter_string(encoder.get(), "tune", "ssim");
  ::heif_encoder_set_parameter_string(encoder.get(), "chroma", "420");
  return good(::heif_encoder_set_lossy_quality(encoder.get(), heicQuality(quality)));
}

Encoder hevcEncoder(const Context &context) {
  heif_encoder *encoder = nullptr;
  if (!context ||
      !good(::heif_context_get_encoder_for_format(context.get(), heif_compression_HEVC, &encoder)))
    return nullptr;
  return Encoder(encoder);
}

Image imageOf(const unsigned char *pixels, int width, int height, int bands, const std::string &profile) {
  heif_image *created = nullptr;
  const auto chroma = chromaFor(bands, 8);
  if (!good(::heif_image_create(width, height, heif_colorspace_RGB, chroma, &created)))
    return nullptr;
  Image image(created);
  if (!good(::heif_image_add_plane(created, heif_channel_interleaved, width, height, 8)))
    return nullptr;
  int stride = 0;
  auto *plane = ::heif_image_get_plane(created, heif_channel_interleaved, &stride);
  const auto row = static_cast<std::size_t>(width) * static_cast<std::size_t>(bands);
  for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y)
    std::copy_n(pixels + y * row, row, plane + y * static_cast<std::size_t>(stride));
  if (!profile.empty() &&
      !good(::heif_image_set_raw_color_profile(created, "prof", profile.data(), profile.size())))
    return nullptr;
  return image;
}

heif_error append(heif_context *, const void *data, size_t size, void *file) {
  static_cast<std::string *>(file)->append(static_cast<const char *>(data), size);
  return {heif_error_Ok, heif_suberror_Unspecified, "Success"};
}

bool addMetadata(const Context &context, const Handle &handle, const Metadata &metadata) {
  const auto length = [](const std::string &block) { return static_cast<int>(block.size()); };
  if (!metadata.exif.empty() &&
      !good(::heif_context_add_exif_metadata(context.get(), handle.get(), metadata.exif.data(),
                                             length(metadata.exif))))
    return false;
  return metadata.xmp.empty() || good(::heif_context_add_XMP_metadata(
                                     context.get(), handle.get(), metadata.xmp.data(), length(metadata.xmp)));
}

} // namespace

std::optional<HeifHeader> readHeifHeader(Bytes file) {
  const Context context = opened(file);
  const Handle handle = primary(context);
  if (!handle)
    return std::nullopt;
  return HeifHeader{.upright = {.width = ::heif_image_handle_get_width(handle.get()),
                                .height = ::heif_image_handle_get_height(handle.get())},
                    .pictures = ::heif_context_get_number_of_top_level_images(context.get())};
}

std::optional<HeifRaster> decodeHeif(Bytes file, Damage damage) {
  const Context context = opened(file);
  const Handle handle = primary(context);
  if (!handle)
    return std::nullopt;
  HeifRaster raster = described(handle);
  const Image image = decoded(handle, raster.bands, raster.bits, damage);
  if (!image)
    return std::nullopt;
  copyRows(image, raster);
  return raster.pixels.empty() ? std::nullopt : std::optional(std::move(raster));
}

std::optional<HeifRaster> decodeHeifReduced(Bytes file, std::int64_t longEdge, Damage damage) {
  const Context context = opened(file);
  const Handle handle = primary(context);
  if (!handle)
    return std::nullopt;
  HeifRaster raster = described(handle);
  if (raster.bits > 8)
    return std::nullopt;
  const Image image = decoded(handle, 4, 8, damage);
  if (!image)
    return std::nullopt;
  const Quads quads = quadsOf(image);
  if (quads.pixels == nullptr || quads.width <= 0 || quads.height <= 0)
    return std::nullopt;
  reduceInto(raster, quads, longEdge);
  return raster;
}

bool encodesHeic() { return ::heif_have_encoder_for_format(heif_compression_HEVC) != 0; }

std::string encodeHeic(const unsigned char *pixels, int width, int height, int bands, double quality,
                       const Metadata &metadata) {
  const Context context(::heif_context_alloc());
  const Encoder encoder = hevcEncoder(context);
  const Image image = imageOf(pixels, width, height, bands, metadata.icc);
  if (!encoder || !image || !configure(encoder, quality))
    return {};
  heif_image_handle *written = nullptr;
  if (!good(::heif_context_encode_image(context.get(), image.get(), encoder.get(), nullptr, &written)))
    return {};
  const Handle handle(written);
  if (!addMetadata(context, handle, metadata))
    return {};
  std::string file;
  heif_writer writer{.writer_api_version = 1, .write = &append};
  return good(::heif_context_write(context.get(), &writer, &file)) ? file : std::string();
}

} // namespace fennick::picture
