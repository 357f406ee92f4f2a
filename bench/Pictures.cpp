#include "bench/Pictures.h"

#include <fmt/format.h>
#include <turbojpeg.h>
#include <vips/vips8>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <span>
#include <vector>

namespace bench {

namespace fs = std::filesystem;
using vips::VImage;

namespace {

using Codec = std::unique_ptr<void, decltype(&::tjDestroy)>;
using Encoded = std::unique_ptr<unsigned char, decltype(&::tjFree)>;

void startVips() {
  static const bool started = [] {
    ::setenv("VIPS_WARNING", "0", 1); // suppresses libvips's warnings in the tables
    if (VIPS_INIT("bench") != 0)
      fail("libvips does not start");
    ::vips_cache_set_max(0); // prevents caching of the repeated picture
    return true;
  }();
  std::ignore = started;
}

// Returns a pseudo-random value from -1 to 1 for a place.
float scatter(std::uint32_t x, std::uint32_t y, std::uint32_t seed) {
  std::uint32_t mixed = x * 0x9E3779B1U ^ y * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
  mixed = (mixed ^ (mixed >> 15U)) * 0x2C1B3C6DU;
  mixed = (mixed ^ (mixed >> 12U)) * 0x297A2D39U;
  mixed ^= mixed >> 15U;
  return static_cast<float>(mixed) * (2.0F / 4294967295.0F) - 1.0F;
}

// Smooth noise: random values at the corners of a grid, blended in between.
struct Octave {
  std::uint32_t cell;
  float strength;
  std::uint32_t seed;

  void addTo(std::span<float> row, std::uint32_t y) const {
    const std::uint32_t top = y / cell;
    const float down = static_cast<float>(y % cell) / static_cast<float>(cell);
    const auto corner = [&](std::uint32_t x) {
      return strength * (scatter(x, top, seed) * (1 - down) + scatter(x, top + 1, seed) * down);
    };
    float left = corner(0);
    for (std::size_t begin = 0; begin < row.size(); begin += cell) {
      const float right = corner(static_cast<std::uint32_t>(begin) / cell + 1);
      const float step = (right - left) / static_cast<float>(cell);
      const auto part = row.subspan(begin, std::min<std::size_t>(cell, row.size() - begin));
      for (std::size_t i = 0; i < part.size(); ++i)
        part[i] += left + step * static_cast<float>(i);
      left = right;
    }
  }
};

constexpr std::array kLight{Octave{1024, 45, 1}, Octave{256, 24, 2}, Octave{64, 12, 3}, Octave{16, 7, 4},
                            Octave{4, 4, 5}};
constexpr std::array kShapes{Octave{700, 1, 6}, Octave{90, 0.5F, 7}};
constexpr std::array kRedness{Octave{800, 30, 8}, Octave{70, 10, 9}};
constexpr std::array kBlueness{Octave{600, 30, 10}, Octave{110, 10, 11}};
constexpr float kEdge = 45; // how much brighter a shape is than its background
constexpr float kGrain = 9;

unsigned char sample(float value) { return static_cast<unsigned char>(std::clamp(value, 0.0F, 255.0F)); }

std::vector<unsigned char> photoPixels(int width, int height) {
  const auto across = static_cast<std::size_t>(width);
  std::vector<unsigned char> pixels;
  pixels.reserve(across * static_cast<std::size_t>(height) * 3);
  for (std::uint32_t y = 0; y < static_cast<std::uint32_t>(height); ++y) {
    const auto row = [&](const auto &octaves) {
      std::vector<float> sum(across);
      for (const Octave &octave : octaves)
        octave.addTo(sum, y);
      return sum;
    };
    const auto light = row(kLight);
    const auto shapes = row(kShapes);
    const auto red = row(kRedness);
    const auto blue = row(kBlueness);
    for (std::size_t x = 0; x < across; ++x) {
      const float base = 110 + light[x] + (shapes[x] > 0.2F ? kEdge : 0.0F) +
                         kGrain * scatter(static_cast<std::uint32_t>(x), y, 12);
      pixels.push_back(sample(base + red[x]));
      pixels.push_back(sample(base - (red[x] + blue[x]) / 3));
      pixels.push_back(sample(base + blue[x]));
    }
  }
  return pixels;
}

std::string saved(const VImage &image, const char *suffix, vips::VOption *options) {
  void *data = nullptr;
  std::size_t size = 0;
  image.write_to_buffer(suffix, &data, &size, options);
  const std::unique_ptr<void, decltype(&::g_free)> owned(data, &::g_free);
  return {static_cast<const char *>(data), size};
}

} // namespace

void fail(const std::string &what) {
  fmt::print(stderr, "bench: {}\n", what);
  std::exit(EXIT_FAILURE);
}

void writePhoto(const fs::path &file, int width, int height) {
  constexpr int kQuality = 92;
  const auto pixels = photoPixels(width, height);
  const Codec codec(::tjInitCompress(), &::tjDestroy);
  unsigned char *data = nullptr;
  unsigned long size = 0;
  const int status = ::tjCompress2(codec.get(), pixels.data(), width, 0, height, TJPF_RGB, &data, &size,
                                   TJSAMP_420, kQuality, 0);
  const Encoded owned(data, &::tjFree);
  if (status != 0)
    fail("a picture cannot be made");
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
}

void convert(const fs::path &from, const fs::path &to) {
  startVips();
  try {
    const auto image = VImage::new_from_file(from.c_str());
    if (to.extension() == ".png")
      image.pngsave(to.c_str(), VImage::option()->set("compression", 1));
    else
      image.heifsave(to.c_str(), VImage::option()
                                     ->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1)
                                     ->set("effort", 0)
                                     ->set("Q", 75));
  } catch (const vips::VError &error) {
    fail(fmt::format("{}: {}", to.filename().string(), error.what()));
  }
}

std::string contentOf(const fs::path &file) {
  std::string content(fs::file_size(file), '\0');
  if (!std::ifstream(file, std::ios::binary).read(content.data(), std::ssize(content)))
    fail("cannot read " + file.string());
  return content;
}

std::string bareThumbnail(const fs::path &file, int longEdge, int percent) {
  const std::string jpeg = contentOf(file);
  const auto *raw = reinterpret_cast<const unsigned char *>(jpeg.data());
  const Codec reader(::tjInitDecompress(), &::tjDestroy);
  const Codec writer(::tjInitCompress(), &::tjDestroy);
  int width = 0;
  int height = 0;
  int subsampling = 0;
  int colours = 0;
  if (::tjDecompressHeader3(reader.get(), raw, jpeg.size(), &width, &height, &subsampling, &colours) != 0)
    fail("no JPEG: " + file.string());
  tjscalingfactor scale{1, 8};
  while (scale.num < 8 && TJSCALED(std::max(width, height), scale) < longEdge)
    ++scale.num;
  width = TJSCALED(width, scale);
  height = TJSCALED(height, scale);
  std::vector<unsigned char> planes(::tjBufSizeYUV2(width, 1, height, subsampling));
  unsigned char *data = nullptr;
  unsigned long size = 0;
  const bool done =
      ::tjDecompressToYUV2(reader.get(), raw, jpeg.size(), planes.data(), width, 1, height, 0) == 0 &&
      ::tjCompressFromYUV(writer.get(), planes.data(), width, 1, height, subsampling, &data, &size, percent,
                          0) == 0;
  const Encoded owned(data, &::tjFree);
  if (!done)
    fail("cannot decode " + file.string());
  return {reinterpret_cast<const char *>(data), size};
}

std::string vipsThumbnail(const fs::path &file, int longEdge, int percent) {
  startVips();
  try {
    const auto small = VImage::thumbnail(
        file.c_str(), longEdge, VImage::option()->set("height", longEdge)->set("size", VIPS_SIZE_DOWN));
    return saved(small, ".jpg", VImage::option()->set("Q", percent)->set("strip", true));
  } catch (const vips::VError &error) {
    fail(fmt::format("{}: {}", file.filename().string(), error.what()));
  }
}

void runCommand(const std::string &command) {
  if (std::system((command + " >/dev/null 2>&1").c_str()) != 0)
    fail("this failed: " + command);
}

} // namespace bench
