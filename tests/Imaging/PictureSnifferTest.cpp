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

TEST(PictureSniffer, ContentDecidesAndTheMajorBrandComesFirst) {
  using enum PictureType;
  const std::vector<std::pair<std::string, std::optional<PictureType>>> cases{
      {sampleJpeg(), jpeg},
      {samplePng(), png},
      {"GIF89a......", gif},
      {sampleWebp(), webp},
      {"RIFF\4\0\0\0WAVEfmt "s, std::nullopt},
      {sampleTiff(false, 1), tiff},
      {sampleTiff(true, 1), tiff},
      {sampleTiff(false, 1, true), dng},
      {sampleTiff(true, 1, true), dng},
      {brands("heic", "mif1avif"), heic},
      {brands("mif1", "miafavif"), avif},
      {brands("mif1", "mif1heix"), heic},
      {brands("msf1", "iso8"), heif},
      {brands("avis", "heic"), avif},
      {brands("qt  ", "heic"), std::nullopt},
      {brands("mp42", "isom"), std::nullopt},
      {"", std::nullopt},
      {"a text file", std::nullopt},
  };
  for (const auto &[file, expected] : cases)
    EXPECT_EQ(sniffType(bytesOf(file)), expected) << file.substr(0, 24);
}

TEST(PictureSniffer, APngMovesWhenItsControlStandsBeforeThePixels) {
  const std::string control = pngChunk("acTL", "\0\0\0\5\0\0\0\0"s);
  EXPECT_EQ(apngFrames(bytesOf(samplePng())), 1);
  EXPECT_EQ(apngFrames(bytesOf(samplePng(control))), 5);
  EXPECT_EQ(apngFrames(bytesOf(samplePng(pngChunk("IDAT", "x") + control))), 1);
}

} // namespace
} // namespace fennick::picture::test
