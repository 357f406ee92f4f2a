#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/EmbeddedVideo.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Leftovers.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataProof.h"
#include "FennickCore/Imaging/Picture/MetadataWriter.h"
#include "tests/Imaging/PictureSamples.h"

#include <gmock/gmock.h>

namespace fennick::picture::test {
namespace {

using namespace std::string_literals;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr MetadataChange kKeep{.width = 640, .height = 480};
constexpr MetadataChange kNoLocation{.width = 640, .height = 480, .stripLocation = true};
constexpr MetadataChange kNothing{.width = 640, .height = 480, .stripAll = true};

const std::string kPlaces = R"(exif:GPSLatitude="43,28.0N" photoshop:City="Arezzo" )";
const std::string kRating = R"(xmp:Rating="5")";

Metadata everything() {
  return {.exif = sampleExif({.orientation = 1, .hasPreview = false}),
          .xmp = sampleXmp(kPlaces + kRating),
          .iptc = iptcSet(120, "a caption") + iptcSet(90, "Arezzo"),
          .icc = numberText(150'000, 4) + std::string(149'996, 'c')};
}

std::string written(const std::string &file, const Metadata &metadata) {
  return writeInto(bytesOf(file), metadata).value();
}

TEST(PictureMetadata, ReadsBackWhatItWritesWithIptcAsXmpInPng) {
  const std::string file = written(sampleJpeg(), everything());
  EXPECT_EQ(readMetadata(bytesOf(file), PictureType::jpeg), everything());
  EXPECT_TRUE(file.ends_with(kJpegScan));
  EXPECT_EQ(jpegSegments(file).at(0).marker, kAPP0);

  const Metadata merged = withIptcInXmp(everything());
  EXPECT_EQ(readMetadata(bytesOf(written(samplePng(), merged)), PictureType::png), merged);
  EXPECT_THAT(merged.xmp, AllOf(HasSubstr("a caption"), HasSubstr("Rating")));
}

TEST(PictureMetadata, ReadsExifFromOlderPngTextAndFromATiffWithoutPixelStorage) {
  std::string digits;
  for (const char c : sampleExif())
    for (const int half : {static_cast<unsigned char>(c) >> 4, c & 15})
      digits += "0123456789abcdef"[half];
  const std::string text = "\nexif\n     306\n" + digits + "\n";
  const std::string file = samplePng(pngChunk("zTXt", "Raw profile type exif\0\0"s + deflated(text)));
  EXPECT_EQ(readMetadata(bytesOf(file), PictureType::png).exif, sampleExif());

  const auto block = ExifBlock::parse(readMetadata(bytesOf(sampleTiff(false, 6)), PictureType::tiff).exif);
  EXPECT_THAT(block->tiff(), HasSubstr("some scanner"));
  EXPECT_EQ(block->orientation(), 6);
  EXPECT_EQ(TiffLayout::of(block->tiff())->firstDirectory(block->tiff())->entries.size(), 2U);
}

TEST(PictureMetadata, StatesUprightAndCopiesUnchangedXmp) {
  Metadata metadata = everything();
  metadata.exif = sampleExif();
  const Metadata prepared = prepare(metadata, kKeep);
  const auto exif = ExifBlock::parse(prepared.exif);
  EXPECT_EQ(exif->orientation(), 1);
  EXPECT_TRUE(exif->hasGPS());
  EXPECT_FALSE(exif->hasThumbnail());
  EXPECT_THAT(prepared.exif, Not(HasSubstr(numberText(4000, 4, ByteOrder::little))));
  EXPECT_EQ(prepared.xmp, metadata.xmp);
  EXPECT_EQ(prepared.iptc, metadata.iptc);

  metadata.xmp = sampleXmp(R"(tiff:Orientation="6" exif:PixelXDimension="4000" )" + kRating);
  const std::string xmp = prepare(metadata, kKeep).xmp;
  EXPECT_THAT(xmp, AllOf(HasSubstr(R"(tiff:Orientation="1")"), HasSubstr(R"(exif:PixelXDimension="640")"),
                         HasSubstr(kRating)));
}

TEST(PictureMetadata, FindsAndRemovesLocationInEveryPlace) {
  const std::vector<Metadata> hiding{
      {.exif = sampleExif()},
      {.xmp = sampleXmp(kPlaces + kRating)},
      {.iptc = iptcSet(120, "a caption") + iptcSet(101, "Italia")},
  };
  for (const Metadata &metadata : hiding) {
    EXPECT_TRUE(hasLocation(metadata));
    const Metadata prepared = prepare(metadata, kNoLocation);
    EXPECT_FALSE(hasLocation(prepared));
    EXPECT_TRUE(hasMetadata(prepared));
    EXPECT_TRUE(proveRemoved(bytesOf(written(sampleJpeg(), prepared)), PictureType::jpeg, Removal::location));
    EXPECT_FALSE(
        proveRemoved(bytesOf(written(sampleJpeg(), metadata)), PictureType::jpeg, Removal::location));
    EXPECT_FALSE(proveRemoved(bytesOf(written(samplePng(), withIptcInXmp(metadata))), PictureType::png,
                              Removal::location));
    EXPECT_FALSE(
        proveRemoved(bytesOf(written(sampleJpeg(), prepared)), PictureType::jpeg, Removal::allMetadata));
  }
  Metadata padded = everything();
  padded.icc += "padding";
  EXPECT_EQ(prepare(padded, kNothing), Metadata{.icc = everything().icc});
  EXPECT_THAT(prepare(hiding[1], kNoLocation).xmp, HasSubstr("Rating"));
  EXPECT_THAT(prepare(hiding[2], kNoLocation).iptc, HasSubstr("a caption"));
}

TEST(PictureMetadata, FindsLocationInFurtherBlocksAndCompressedText) {
  const std::string exif = *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif({.hasGPS = false}));
  const std::string xmp = *jpegSegment(kAPP1, std::string(kXMPPrefix) + sampleXmp(kRating));
  const std::string extended = "http://ns.adobe.com/xmp/extension/\0"s + std::string(40, '0');
  const std::string caption = iptcSet(120, "a caption"), place = iptcSet(90, "Arezzo");
  for (const std::string &hidden : {
           *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif()),
           *jpegSegment(kAPP1, std::string(kXMPPrefix) + sampleXmp(kPlaces)),
           *jpegSegment(kAPP1, extended + "<exif:GPSLatitude>"),
           *jpegSegment(kAPP13, "Photoshop 3.0\0"s + photoshopOfIptc(caption) + photoshopOfIptc(place)),
       }) {
    const Metadata read = readMetadata(bytesOf(sampleJpeg(exif + xmp + hidden)), PictureType::jpeg);
    EXPECT_TRUE(hasLocation(read));
    EXPECT_FALSE(hasLocation(prepare(read, kNoLocation)));
    EXPECT_THAT(prepare(read, kNoLocation).xmp, HasSubstr("Rating"));
  }
  const auto readPng = [](const std::string &packet) {
    return readMetadata(bytesOf(samplePng(packedXmp(packet))), PictureType::png);
  };
  EXPECT_TRUE(hasLocation(readPng(sampleXmp(kPlaces))));
  EXPECT_FALSE(hasLocation(prepare(readPng(sampleXmp(kPlaces)), kNoLocation)));
  EXPECT_FALSE(hasMetadata(readPng(std::string(4UZ * 1'024 * 1'024 + 1, 'x'))));
}

TEST(PictureMetadata, DetectsLeftoversThatReadersOverlook) {
  const auto clean = [](const std::string &file, PictureType type, Removal removal) {
    return proveRemoved(bytesOf(file), type, removal);
  };
  const std::string exif = *jpegSegment(kAPP1, "Exif\0\0"s + ExifBlock::minimal(1));
  const std::string hidden = *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif());
  const std::string preview = *jpegSegment(kAPP1, "Exif\0\0"s + sampleExif({.hasGPS = false}));
  EXPECT_TRUE(clean(sampleJpeg(exif), PictureType::jpeg, Removal::location));
  EXPECT_FALSE(clean(sampleJpeg(exif + hidden), PictureType::jpeg, Removal::location));
  EXPECT_FALSE(clean(sampleJpeg(preview), PictureType::jpeg, Removal::location));
  EXPECT_FALSE(clean(sampleJpeg() + hidden, PictureType::jpeg, Removal::location));
  EXPECT_FALSE(clean(sampleJpeg("stray" + exif), PictureType::jpeg, Removal::location));
  EXPECT_FALSE(clean(sampleJpeg(*jpegSegment(0xFE, "a comment")), PictureType::jpeg, Removal::allMetadata));
  EXPECT_FALSE(clean(sampleHeif(), PictureType::heic, Removal::location));
}

TEST(PictureMetadata, DetectsDataOutsideOfBlocksAndItsLocation) {
  const auto segment = [](std::uint8_t marker, const std::string &payload) {
    return sampleJpeg(*jpegSegment(marker, payload));
  };
  const std::string located = sampleJpeg(*jpegSegment(kAPP1, "Exif\0\0"s + sampleExif()));
  const std::string photoshop = "Photoshop 3.0\0"s + "8BIM\x04\x22\0\0"s;
  const auto png = [](const std::string &type, const std::string &payload) {
    return samplePng(pngChunk(type, payload));
  };
  const auto cutBehind = [](const std::string &last, const std::string &file) {
    return file.substr(0, file.find(last) + last.size());
  };
  std::string webp = sampleWebp();
  writeNumber(webp, 4, 1000, 4, ByteOrder::little);
  struct Case {
    std::string file;
    PictureType type;
    bool any, location;
  };
  const std::vector<Case> cases{
      {sampleJpeg(), PictureType::jpeg, false, false},
      {sampleJpeg() + std::string(100, '\0'), PictureType::jpeg, false, false},
      {segment(0xE2, "ICC_PROFILE\0\1\1"s), PictureType::jpeg, false, false},
      {segment(0xFE, "made by hand"), PictureType::jpeg, true, false},
      {segment(0xFE, "GPS 43.5 11.9"), PictureType::jpeg, true, true},
      {segment(0xE4, "a maker's block"), PictureType::jpeg, true, false},
      {segment(0xE4, "\1\2GPS=43.5,11.9\3"s), PictureType::jpeg, true, true},
      {segment(0xE4, "\1\2gPs\3 by chance"s), PictureType::jpeg, true, false},
      {segment(kAPP0, "JFXX\0\x10"s + kPreview), PictureType::jpeg, true, false},
      {segment(kAPP1, "Exif\0\0neither order"s), PictureType::jpeg, true, true},
      {segment(kAPP13, photoshop + numberText(sampleExif().size(), 4) + sampleExif()), PictureType::jpeg,
       true, true},
      {sampleJpeg() + "a trailer", PictureType::jpeg, true, false},
      {sampleJpeg() + sampleJpeg(), PictureType::jpeg, true, false},
      {sampleJpeg() + located, PictureType::jpeg, true, true},
      {sampleJpeg() + sampleVideo(), PictureType::jpeg, true, false},
      {sampleJpeg() + sampleVideo({.userData = box("\xA9xyz", "+43.4-011.8/")}), PictureType::jpeg, true,
       true},
      {sampleJpeg() + sampleVideo({.handler = "meta"}), PictureType::jpeg, true, true},
      {samplePng(), PictureType::png, false, false},
      {png("pHYs", std::string(9, '\1')), PictureType::png, false, false},
      {png("tIME", std::string(7, '\1')), PictureType::png, true, false},
      {png("tEXt", "Author\0somebody"s), PictureType::png, true, false},
      {png("tEXt", "Location\0Arezzo"s), PictureType::png, true, true},
      {png("zTXt", "Comment\0\0"s + deflated("latitude 43.5")), PictureType::png, true, true},
      {png("zTXt", "Comment\0\0damaged"s), PictureType::png, true, true},
      {samplePng() + "more", PictureType::png, true, false},
      {cutBehind("Arezzo", png("tEXt", "Location\0Arezzo"s)), PictureType::png, true, true},
      {sampleWebp(), PictureType::webp, false, false},
      {cutBehind("Arezzo", webp + webpChunk("XMP ", "<city>Location: Arezzo</city>")), PictureType::webp,
       true, true},
      {"MM\0+\0\x08\0\0"s + numberText(16, 8) + numberText(1, 8) + "\x88\x25"s + std::string(26, '\0'),
       PictureType::tiff, true, true},
      {sampleHeif(), PictureType::heic, true, true},
      {box("ftyp", "heic\0\0\0\0"s) + box("meta", std::string(12, '\0')), PictureType::heic, true, true},
      {sampleHeif() + box("mpvd", sampleVideo()), PictureType::heic, true, true},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const auto &[file, type, any, location] = cases[i];
    const Leftovers found = leftovers(bytesOf(file), type);
    EXPECT_EQ(found.any, any) << "case " << i;
    EXPECT_EQ(found.location, location) << "case " << i;
  }
  EXPECT_FALSE(videoWithoutLocation(sampleVideo({.handler = "camm"}))) << "positions between the frames";
}

TEST(PictureMetadata, CorrectsCompanionsInXmp) {
  const auto claims = [](const CompanionLengths &lengths) {
    MetadataChange change = kKeep;
    change.companions = lengths;
    return prepare({.xmp = companionXmp(1000, 2000)}, change).xmp;
  };
  EXPECT_EQ(claims({.gainMap = 1000, .video = 2000}), companionXmp(1000, 2000));
  EXPECT_THAT(claims({}), AllOf(HasSubstr(kRating), Not(HasSubstr("Container:")), Not(HasSubstr("hdrgm:")),
                                Not(HasSubstr("Camera:"))));
  EXPECT_THAT(claims({.gainMap = 700}), AllOf(HasSubstr("hdrgm:Version"), HasSubstr(R"(Item:Length="700")"),
                                              Not(HasSubstr("Motion")), Not(HasSubstr("MicroVideo"))));
  EXPECT_THAT(claims({.gap = 24, .video = 900}),
              AllOf(HasSubstr(R"(Camera:MicroVideoOffset="900")"), HasSubstr(R"(Item:Length="900")"),
                    HasSubstr(R"(Item:Padding="24")"), Not(HasSubstr("GainMap"))));
}

TEST(PictureMetadata, ShrinksOrOmitsBlocksThatDoNotFitIntoAJpeg) {
  const auto readBack = [](const Metadata &metadata) {
    return readMetadata(bytesOf(written(sampleJpeg(), metadata)), PictureType::jpeg);
  };
  Metadata large{.exif = sampleExif({.hasPreview = false, .makerNote = std::string(70'000, 'm')}),
                 .xmp = sampleXmp(kRating) + std::string(70'000, ' ')};
  const Metadata less = readBack(large);
  EXPECT_THAT(less.exif, AllOf(HasSubstr("a description"), HasSubstr("2024:05:01 10:00:00")));
  EXPECT_TRUE(hasLocation(less));
  EXPECT_LT(less.exif.size(), 1'000);
  EXPECT_THAT(less.xmp, HasSubstr(kRating));
  EXPECT_LT(less.xmp.size(), 1'000);

  large.xmp = sampleXmp("xmp:Label=\"" + std::string(70'000, 'x') + "\"");
  const std::string caption = iptcSet(120, std::string(30'000, 'x'));
  large.iptc = caption + caption + caption;
  EXPECT_EQ(readBack(large), Metadata{.exif = less.exif});
  EXPECT_EQ(writeInto(bytesOf("no picture"), large).error(), PictureFault::unencodable);
}

} // namespace
} // namespace fennick::picture::test
