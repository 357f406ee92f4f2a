#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Heif.h"
#include "FennickCore/Imaging/Picture/HeifFile.h"
#include "FennickCore/Imaging/Picture/Orientation.h"
#include "tests/Imaging/PictureSamples.h"

#include <gmock/gmock.h>

namespace fennick::picture::test {
namespace {

using namespace std::string_literals;

std::string turned(const std::string &file, PictureType type, std::int64_t orientation) {
  const std::string result = withOrientation(bytesOf(file), type, orientation).value();
  EXPECT_EQ(storedOrientation(bytesOf(result), type), orientation);
  return result;
}

TEST(PictureOrientation, KeepsTheLengthOfAJpegWithOrientation) {
  const std::string xmp = std::string(kXMPPrefix) + sampleXmp(R"(tiff:Orientation="6")");
  const std::string exif = *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif());
  for (const std::string &stray : {""s, "stray\xFF\0bytes"s}) {
    const std::string file = sampleJpeg(stray + exif + stray + *jpegSegment(kAPP1, xmp));
    const std::string result = turned(file, PictureType::jpeg, 8);
    EXPECT_THAT(result, testing::HasSubstr(R"(tiff:Orientation="8")"));
    EXPECT_EQ(turned(result, PictureType::jpeg, 6), file);
  }
}

// Builds a directory of two pictures, the second at `offset` from the directory's own header.
std::string multiPicture(std::uint64_t firstBytes, std::uint64_t offset) {
  TiffWriter mpf(ByteOrder::big);
  const std::string entries = numberText(0, 4) + numberText(firstBytes, 4) + numberText(0, 8) +
                              numberText(0, 4) + numberText(7, 4) + numberText(offset, 4) + numberText(0, 4);
  return *jpegSegment(kAPP2, "MPF\0"s + mpf.finish(mpf.directory({TiffWriter::text(0xB002, entries, 7)})));
}

// Returns the second picture according to the directory of `jpeg`.
std::string secondPicture(const std::string &jpeg) {
  const std::size_t header = jpeg.find("MPF\0"s) + 4;
  const std::size_t entries = header + 8; // the writer puts values first
  EXPECT_EQ(readNumber(jpeg, entries + 4, 4), jpeg.size() - 7);
  return jpeg.substr(header + *readNumber(jpeg, entries + 24, 4));
}

TEST(PictureOrientation, CorrectsPositionsOfFurtherJpegPictures) {
  const std::string exif = *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif({.orientation = std::nullopt}));
  for (const auto &[before, after] : {std::pair(""s, ""s), std::pair(exif, ""s), std::pair(""s, exif)}) {
    const std::string blank = sampleJpeg(before + multiPicture(0, 0) + after);
    const std::size_t header = blank.find("MPF\0"s) + 4;
    const std::string file =
        sampleJpeg(before + multiPicture(blank.size(), blank.size() - header) + after) + "second!";
    ASSERT_EQ(secondPicture(file), "second!");
    const std::string result = turned(file, PictureType::jpeg, 6);
    EXPECT_GT(result.size(), file.size());
    EXPECT_EQ(secondPicture(result), "second!");
    EXPECT_TRUE(result.ends_with(kJpegScan + "second!"));
  }
}

TEST(PictureOrientation, AddsAndChangesTheChunkInPngAndWebp) {
  const std::string png = turned(samplePng(), PictureType::png, 6);
  EXPECT_EQ(png, samplePng(pngChunk("eXIf", ExifBlock::minimal(6)))); // including its checksum
  EXPECT_EQ(turned(png, PictureType::png, 3), samplePng(pngChunk("eXIf", ExifBlock::minimal(3))));
  const auto packed = [](const std::string &digit) {
    return packedXmp(sampleXmp("tiff:Orientation=\"" + digit + "\""));
  };
  EXPECT_EQ(turned(samplePng(packed("6")), PictureType::png, 1),
            samplePng(packed("1") + pngChunk("eXIf", ExifBlock::minimal(1))));

  const std::string webp = turned(sampleWebp(), PictureType::webp, 6);
  EXPECT_EQ(readNumber(webp, 4, 4, ByteOrder::little), webp.size() - 8);
  const auto chunks = webpChunks(webp);
  ASSERT_EQ(chunks.size(), 3U);
  EXPECT_EQ(chunks[0].payload(webp), "\x08\0\0\0\x2B\x01\0\xC7\0\0"s); // 300 × 200
  EXPECT_EQ(webp.substr(chunks[1].at, chunks[1].end - chunks[1].at), sampleWebp().substr(12));
  EXPECT_EQ(turned(webp, PictureType::webp, 1).size(), webp.size());
}

TEST(PictureOrientation, KeepsThePixelsOfATiffInPlace) {
  for (const bool isBig : {false, true}) {
    const std::string file = sampleTiff(isBig, 1);
    EXPECT_EQ(turned(turned(file, PictureType::tiff, 8), PictureType::tiff, 1), file);
    const std::string silent = sampleTiff(isBig, std::nullopt);
    EXPECT_EQ(turned(silent, PictureType::tiff, 6).substr(16, silent.size() - 16), silent.substr(16));
  }
}

void expectSamePixels(const std::string &file) {
  const auto heif = HeifFile::parse(file);
  const auto data = [&](std::uint32_t item) {
    const auto place = heif->stretchesOf(*heif->item(item), file).at(0);
    return file.substr(place.at, place.length);
  };
  EXPECT_EQ(data(kPrimary) + data(kThumbnail) + data(kOther), "primarythumbnailother");
  // The dimensions follow four bytes of version and flags.
  const HeifBox *extent = heif->propertyOf(kPrimary, "ispe");
  ASSERT_NE(extent, nullptr);
  EXPECT_EQ(readNumber(file, extent->payloadAt + 4, 4), 400U);
  EXPECT_EQ(readNumber(file, extent->payloadAt + 8, 4), 300U);
}

std::optional<unsigned> quartersOf(const std::string &file, std::uint32_t item) {
  const auto heif = HeifFile::parse(file);
  const HeifBox *rotation = heif->propertyOf(item, "irot");
  return rotation ? std::optional(static_cast<unsigned>(file[rotation->payloadAt])) : std::nullopt;
}

TEST(PictureOrientation, RotatesHeicInPlaceWithItsThumbnail) {
  const std::string file = sampleHeif();
  const std::string result = turned(file, PictureType::heic, 8);
  EXPECT_EQ(quartersOf(result, kThumbnail), 1U);
  EXPECT_EQ(ExifBlock::parse(heifBlocks(bytesOf(result)).exif)->orientation(), 8);
  expectSamePixels(result);
  EXPECT_EQ(turned(result, PictureType::heic, 6), file);

  const std::string shared = turned(sampleHeif({.isSharedWithOther = true}), PictureType::heic, 3);
  EXPECT_EQ(quartersOf(shared, kOther), 3U);
  EXPECT_EQ(quartersOf(shared, kPrimary), 2U);
  expectSamePixels(shared);
}

TEST(PictureOrientation, AddsHeicPropertiesForAllOrientations) {
  for (const unsigned offsetBytes : {4U, 8U})
    for (const std::optional<unsigned> quarters : {std::optional<unsigned>(), std::optional(3U)})
      for (std::int64_t orientation = 1; orientation <= 8; ++orientation) {
        const std::string file = sampleHeif({.quarters = quarters, .offsetBytes = offsetBytes});
        const std::string result = turned(file, PictureType::heic, orientation);
        expectSamePixels(result);
        EXPECT_EQ(quartersOf(result, kThumbnail), quartersOf(result, kPrimary));
        EXPECT_EQ(quartersOf(result, kOther), std::nullopt);
      }
}

TEST(PictureOrientation, RejectsOrKeepsReadableEveryTruncatedFile) {
  const std::string exif = *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif());
  const std::vector<std::pair<std::string, PictureType>> files{
      {sampleHeif(), PictureType::heic},     {sampleHeif({.quarters = {}}), PictureType::heic},
      {sampleJpeg(exif), PictureType::jpeg}, {samplePng(), PictureType::png},
      {sampleWebp(), PictureType::webp},     {sampleTiff(true, 1), PictureType::tiff}};
  for (const auto &[file, type] : files)
    for (std::size_t length = 0; length < file.size(); ++length) {
      const auto result = withOrientation(bytesOf(file.substr(0, length)), type, 5);
      EXPECT_TRUE(!result || storedOrientation(bytesOf(*result), type) == 5) << length;
    }
}

} // namespace
} // namespace fennick::picture::test
