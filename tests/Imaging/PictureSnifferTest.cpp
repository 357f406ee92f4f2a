#include "FennickCore/Imaging/Picture/PictureSniffer.h"
#include "FennickCore/Imaging/Picture/Containers.h"
#include "tests/Imaging/PictureSamples.h"

#include <gmock/gmock.h>

namespace fennick::picture::test {
namespace {

using namespace std::string_literals;

std::string brands(const std::string &major, const std::string &compatible = "") {
  return box("ftyp", major + std::string(4, '\0') + compatible) + std::string(16, 'x');
}

TEST(PictureSniffer, DecidesByContentAndMajorBrandFirst) {
  using enum PictureType;
  const std::vector<std::pair<std::optional<PictureType>, std::vector<std::string>>> cases{
      {jpeg, {sampleJpeg()}},
      {png, {samplePng()}},
      {gif, {"GIF89a......"}},
      {webp, {sampleWebp()}},
      {tiff, {sampleTiff(false, 1), sampleTiff(true, 1)}},
      {dng, {sampleTiff(false, 1, true), sampleTiff(true, 1, true)}},
      {heic, {brands("heic", "mif1avif"), brands("mif1", "mif1heix")}},
      {avif, {brands("mif1", "miafavif"), brands("avis", "heic")}},
      {heif, {brands("msf1", "iso8")}},
      {{}, {brands("qt  ", "heic"), brands("mp42", "isom"), "RIFF\4\0\0\0WAVEfmt "s, "a text file"}}};
  for (const auto &[expected, files] : cases)
    for (const std::string &file : files)
      EXPECT_EQ(sniffType(bytesOf(file)), expected) << file.substr(0, 24);
}

TEST(PictureSniffer, DetectsAnimatedPng) {
  const std::string control = pngChunk("acTL", "\0\0\0\5\0\0\0\0"s);
  EXPECT_EQ(apngFrames(bytesOf(samplePng())), 1);
  EXPECT_EQ(apngFrames(bytesOf(samplePng(control + pngChunk("fcTL", std::string(26, '\0'))))), 5);
  EXPECT_EQ(apngFrames(bytesOf(samplePng(control))), 6) << "the picture before the animation is none of it";
  EXPECT_EQ(apngFrames(bytesOf(samplePng(pngChunk("IDAT", "x") + control))), 1);
}

} // namespace
} // namespace fennick::picture::test
