// Files from other programs and devices in the pipeline and the real sandboxed process under four sets of
// options. Add a row for a kind of file that is treated differently.

#include "FennickCore/Imaging/DecoderPool.h"
#include "FennickCore/Imaging/ImagePipeline.h"
#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/JpegCompanions.h"
#include "tests/Imaging/PictureSamples.h"
#include "tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vips/vips8>

#include <array>
#include <optional>
#include <string>
#include <vector>

// The HEVC encoder never frees some of its tables. Only the leak checker calls this function.
extern "C" const char *__lsan_default_suppressions();                           // NOLINT
extern "C" const char *__lsan_default_suppressions() { return "leak:libx265"; } // NOLINT

namespace fennick {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace picture::test;
using picture::jpegSegment;
using picture::pngChunk;
using testing::HasSubstr;
using vips::VImage;

constexpr std::size_t kOptionSets = 4;
const std::array<ImagingOptions, kOptionSets> kOptions{
    ImagingOptions{}, ImagingOptions{.maxPixels = 1600, .stripLocation = true, .keepOriginal = true},
    ImagingOptions{.format = OutputFormat::heic, .stripAllMetadata = true},
    ImagingOptions{.maxBytes = 300'000, .format = OutputFormat::jpeg}};

// The expected result for a file. Properties of every processed file (type, size, no location, ...) are
// checked for each.
struct Fate {
  bool processed = false;
  std::string note{};                      // a part of it
  void (*check)(const std::string &) = {}; // the bytes of the result
};
using Fates = std::array<Fate, kOptionSets>;

Fates keptAlways(const std::string &note) {
  Fates fates;
  fates.fill({.note = note});
  return fates;
}
Fate kept(const std::string &note = "no change needed") { return {.note = note}; }
Fate processed(const std::string &note = "px", void (*check)(const std::string &) = {}) {
  return {.processed = true, .note = note, .check = check};
}

using Colour = std::array<double, 3>;

struct Row {
  std::string name; // of the file
  std::string bytes;
  Fates fates;
  std::optional<Colour> shown{}; // colour in the middle of the thumbnail; absent: no thumbnail
};

// The default colour of the field.
constexpr Colour kOrange{220, 130, 40};
constexpr Colour kGreen{40, 160, 40}; // of the small picture in sampleRaw

VImage field(int width = 400, int height = 300, const Colour &colour = kOrange) {
  return VImage::black(width, height)
      .new_from_image(std::vector<double>(colour.begin(), colour.end()))
      .cast(VIPS_FORMAT_UCHAR)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// `suffix` is the extension with options of libvips: ".tif[compression=lzw]".
std::string saved(const VImage &image, const std::string &suffix) {
  const test::TemporaryFolder folder;
  const auto name = "saved" + suffix.substr(0, suffix.find('['));
  image.write_to_file(((folder / "saved").string() + suffix).c_str());
  return folder.read(name);
}

// Inserts an EXIF block with a location after the start of the file.
std::string jpegWithLocation(const VImage &image = field()) {
  return saved(image, ".jpg")
      .insert(2, *jpegSegment(picture::kAPP1, std::string(picture::kExifPrefix) +
                                                  sampleExif({.orientation = 1, .hasPreview = false})));
}
constexpr std::size_t kBehindHeader = 33; // of a PNG
std::string pngWith(const std::string &chunks, const VImage &image = field()) {
  return saved(image, ".png").insert(kBehindHeader, chunks);
}

// A field whose 8-bit samples mean kOrange in a coding by number.
std::string pngCoded(char primaries, char transfer, const Colour &samples) {
  return pngWith(pngChunk("cICP", std::string{primaries, transfer, 0, 1}), field(400, 300, samples));
}

std::string heic(const std::string &profile = "") {
  const VImage image = field().copy_memory();
  return picture::encodeHeic(static_cast<const unsigned char *>(image.data()), image.width(), image.height(),
                             image.bands(), 0.9, {.icc = profile});
}

std::string replaced(std::string text, const std::string &old, const std::string &by) {
  return text.replace(text.find(old), old.size(), by);
}

// A colour profile with one tag that states BT.2020 and PQ by number, as the only part in a JPEG.
const std::string kPQProfile = "ICC_PROFILE\0\1\1"s + std::string(128, '\0') +
                               "\0\0\0\1cicp\0\0\0\x90\0\0\0\x0C"s + "cicp\0\0\0\0\x09\x10\0\1"s;

std::vector<Row> ordinaryRows() {
  const auto exif = pngChunk("eXIf", sampleExif({.orientation = 1, .hasPreview = false}));
  return {
      {"text.jpg", "no picture", keptAlways("非图片，原样保存 / not an image, kept as is")},
      {"empty.jpg", "", keptAlways("非图片")},
      {"start.jpg", "\xFF\xD8\xFF\xE0", keptAlways("无法解码图片")},
      {"bomb.png", pngWith("").replace(8, 25, pngChunk("IHDR", "\0\0\xFF\xFF\0\0\xFF\xFF\x8\2\0\0\0"s)),
       keptAlways("oversized, not processed (65535×65535)")},
      {"located.jpg", jpegWithLocation(), {kept(), processed(), processed(), kept()}, kOrange},
      {"large.jpg",
       jpegWithLocation(field(2000, 1500)),
       {kept(), processed("1600px"), processed("HEIC"), kept()},
       kOrange},
      {"located.png", pngWith(exif), {kept(), processed(), processed("HEIC"), processed("JPEG")}, kOrange},
      {"photo.webp",
       saved(field(), ".webp"),
       {processed("webp → JPEG"), processed("webp → JPEG"), processed("HEIC"), processed("JPEG")},
       kOrange},
  };
}

// Camera raw files can only be developed by their maker's programs.
std::vector<Row> rawRows() {
  const std::string preview = saved(field(), ".jpg");
  return {
      {"nikon.tif", sampleRaw({.preview = preview}), keptAlways("kept as is (nef)"), kOrange},
      {"coolpix.nrw", sampleRaw({.model = "COOLPIX P7800"}), keptAlways("kept as is (nrw)"), kGreen},
      {"linear.tif", sampleRaw({.make = "Nobody", .preview = preview, .photometric = 34892}),
       keptAlways("kept as is (raw)"), kOrange},
      {"scanned.nef", sampleRaw({.preview = preview, .photometric = 1}), keptAlways("kept as is (nef)"),
       kOrange},
      {"reduced.tif", sampleRaw({.make = "Nobody", .photometric = 1}), keptAlways("kept as is (tiff)"),
       kGreen},
      {"pyramid.tif",
       saved(field(), ".tif[tile,pyramid,subifd,tile_width=64,tile_height=64]"),
       {processed(), processed(), processed("HEIC"), processed()},
       kOrange},
  };
}

VImage twoPages() {
  VImage pages = field().join(field(400, 300, kGreen), VIPS_DIRECTION_VERTICAL);
  pages.set("page-height", 300);
  return pages;
}

// Files with more than one picture.
std::vector<Row> sequenceRows() {
  const std::string control = pngChunk("acTL", "\0\0\0\2\0\0\0\0"s);
  const std::string photo = saved(field(), ".jpg[strip]");
  const std::string bothEyes = replaced(picture::withGainMap(photo, photo), "\0\3\0\0"s, "\0\2\0\2"s);
  return {
      {"still.gif", saved(field(), ".gif"), keptAlways("kept as is (gif)"), kOrange},
      {"stereo.jpg", bothEyes, keptAlways("kept as is (jpeg)"), kOrange},
      {"moving.png", pngWith(control), keptAlways("kept as is (png)"), kOrange},
      {"pages.tif", saved(field(), ".tif[tile,pyramid]"), keptAlways("kept as is (tiff)"), kOrange},
      {"moving.webp", saved(twoPages(), ".webp"), keptAlways("kept as is (webp)"), kOrange},
      {"moving.heic", heic() + box("moov", ""), keptAlways("kept as is (heic)"), kOrange},
      {"film.heic", box("ftyp", "msf1\0\0\0\0hevc"s) + box("moov", ""), keptAlways("kept as is (heic)")},
      {"brand.heic", replaced(heic(), "mif1", "msf1"), {kept(), kept(), kept(), processed()}, kOrange},
  };
}

// Samples, colours and dynamic ranges beyond 8-bit sRGB.
std::vector<Row> sampleRows() {
  const auto unlessAsked = [](const std::string &note) {
    return Fates{kept(), kept(), kept(note), kept(note)};
  };
  const Fates converted{processed("tiff → JPEG"), processed(), processed("HEIC"), processed()};
  return {
      {"float.tif", saved(field().colourspace(VIPS_INTERPRETATION_scRGB), ".tif"),
       keptAlways("kept as is (tiff, sample format)"), kOrange},
      {"gray.tif", saved(VImage::black(400, 300) + 0.2158, ".tif"), // linear light of a gray of 128
       keptAlways("kept as is (tiff, sample format)"), Colour{128, 128, 128}},
      {"lab.tif", saved(field().colourspace(VIPS_INTERPRETATION_LABS), ".tif"),
       keptAlways("kept as is (tiff, wide gamut)"), kOrange},
      {"channels.tif", saved(field().bandjoin({1.0, 2.0, 3.0}).cast(VIPS_FORMAT_UCHAR), ".tif"),
       keptAlways("kept as is (tiff, sample format)"), kOrange},
      {"bits.tif",
       saved(field(400, 300, {255, 255, 255}).colourspace(VIPS_INTERPRETATION_B_W), ".tif[bitdepth=1]"),
       converted, Colour{255, 255, 255}},
      {"pq.png", pngCoded(9, 16, {131, 113, 77}), unlessAsked("kept as is (png, HDR)"), kOrange},
      {"hlg.png", pngCoded(9, 18, {168, 126, 56}), unlessAsked("kept as is (png, HDR)"), kOrange},
      {"wide.png", pngCoded(9, 13, {191, 138, 63}), unlessAsked("kept as is (png, wide gamut)"), kOrange},
      {"srgb.png", pngCoded(1, 13, kOrange), {kept(), kept(), processed("HEIC"), processed("JPEG")}, kOrange},
      {"pq.jpg",
       saved(field(400, 300, {131, 113, 77}), ".jpg").insert(2, *jpegSegment(picture::kAPP2, kPQProfile)),
       {kept(), kept(), kept("kept as is (jpeg, HDR)"), kept()},
       kOrange},
      {"pq.heic",
       replaced(heic("\0\x09\0\x10\0\x06\x80"s), "colrprof",
                "colrnclx"), // the place of a profile for four numbers
       {kept(), kept(), kept(), kept("kept as is (heic, HDR)")},
       Colour{255, 0, 0}},
  };
}

// JPEG files that deviate from the standard.
std::vector<Row> irregularJpegRows() {
  const std::string photo = jpegWithLocation();
  const auto behind = [&](const std::string &marker, std::size_t bytes) {
    return photo.find(marker) + bytes;
  };
  const auto insertedAt = [&](std::size_t at, const std::string &bytes) {
    return std::string(photo).insert(at, bytes);
  };
  const auto replacedAt = [](std::string file, std::size_t at, const std::string &bytes) {
    return file.replace(at, bytes.size(), bytes);
  };
  const auto quantization = behind("\xFF\xDB", 0), scanParameters = behind("\xFF\xDA", 11);
  const std::string zeros(20'000, '\0'), endless = photo.substr(0, photo.size() - 2),
                                         cut = photo.substr(0, photo.size() - 400);
  const std::string square = jpegWithLocation(field(256, 256)); // as many MCUs of 8 x 32 as of 16 x 16 pixels
  const Fates fates{kept(), processed(), processed(), kept()};
  const Fates damaged{kept(), kept("无法解码图片"), kept("无法解码图片"), kept()};
  return {
      {"stray.jpg", insertedAt(quantization, std::string(14, '\x05')), fates, kOrange},
      {"stray-before-exif.jpg", insertedAt(2, "\xFF\xE0\0\4ab"s + "stray\xFF\0"s), fates, kOrange},
      {"scan-parameters.jpg", replacedAt(photo, scanParameters, "\0\0\0"s), fates, kOrange},
      {"endless.jpg", endless, fates, kOrange},
      {"endless-padded.jpg", endless + zeros, fates, kOrange},
      {"padded.jpg", photo + zeros, fates, kOrange},
      {"padded-scan.jpg", insertedAt(photo.size() - 2, zeros), fates, kOrange},
      {"sampled-1x4.jpg", replacedAt(square, square.find("\1\x22\0"s) + 1, "\x14"), fates, kOrange},
      {"cut.jpg", cut, damaged, kOrange},
      {"cut-with-end.jpg", cut + "\xFF\xD9", damaged, kOrange},
      {"never-written.jpg", cut + zeros, damaged, kOrange},
      {"garbage.jpg", insertedAt(photo.size() - 2, saved(field(), ".webp")), damaged, kOrange},
      {"twelve-bits.jpg", replacedAt(photo, behind("\xFF\xC0", 4), "\x0C"), damaged},
  };
}

// A photo with a gain map of a quarter of its size and a video with a location.
std::string motionPhotoInHDR() {
  const auto with = [](std::string jpeg, const std::string &xmp) {
    return jpeg.insert(2, *jpegSegment(picture::kAPP1, std::string(picture::kXMPPrefix) + xmp));
  };
  const std::string gainMap =
      with(saved(field(500, 375), ".jpg[strip]"),
           sampleXmp(R"(xmlns:hdrgm="http://ns.adobe.com/hdr-gain-map/1.0/" hdrgm:GainMapMax="2.5")"));
  const std::string video = sampleVideo({.userData = box("\xA9xyz", "+43.4-011.8/")});
  std::string photo =
      with(saved(field(2000, 1500), ".jpg[strip]"), companionXmp(gainMap.size(), video.size()));
  photo.insert(2, *jpegSegment(picture::kAPP1, std::string(picture::kExifPrefix) +
                                                   sampleExif({.hasGPS = false, .hasPreview = false})));
  return picture::withGainMap(photo, gainMap) + video;
}

void expectCompanions(const std::string &file) {
  const auto found = picture::jpegCompanions(file);
  ASSERT_TRUE(found.gainMap && found.video);
  const auto gainMap = file.substr(found.gainMap->at, found.gainMap->length);
  EXPECT_EQ(picture::jpegFrameSize(gainMap), (PixelSize{.width = 300, .height = 400}));
  EXPECT_THAT(gainMap, HasSubstr("GainMapMax"));
  EXPECT_EQ(found.gainMap->at, picture::jpegEnd(file));
  EXPECT_EQ(found.video->at + found.video->length, file.size());
  EXPECT_THAT(file, testing::AllOf(HasSubstr("frames"), testing::Not(HasSubstr("43.4"))));
  EXPECT_THAT(file, HasSubstr("Item:Length=\"" + std::to_string(gainMap.size()) + '"'));
  // The directory's second entry: its length, and its position from the directory's header.
  const auto header = file.find("MPF\0"s) + 4;
  EXPECT_EQ(picture::readNumber(file, header + 70, 4), gainMap.size());
  EXPECT_EQ(header + picture::readNumber(file, header + 74, 4).value_or(0), found.gainMap->at);
  EXPECT_EQ(picture::readNumber(file, header + 54, 4), found.gainMap->at);
}

// Additional parts of JPEG files: motion videos, gain maps, further pictures, trailers.
std::vector<Row> companionRows() {
  const std::string lost = "motion video not kept；HDR 增益图未保留 / gain map not kept";
  const std::string plain = saved(field(), ".jpg[strip]");
  const Fates located{kept(), processed(), processed("HEIC"), kept()};
  return {
      {"commented.jpg", plain + "a trailer", {kept(), kept(), processed("HEIC"), kept()}, kOrange},
      {"second.jpg", plain + jpegWithLocation(), located, kOrange},
      {"video.jpg", plain + sampleVideo({.userData = box("\xA9xyz", "+43.4-011.8/")}), located, kOrange},
      {"motion.jpg",
       motionPhotoInHDR(),
       {kept(), processed("rotated", expectCompanions), processed(lost), kept()},
       kOrange},
      {"named.png",
       pngWith(pngChunk("tEXt", "Location\0Arezzo"s)),
       {kept(), processed(), processed("HEIC"), processed("JPEG")},
       kOrange},
  };
}

class ForeignFilesTest : public testing::Test {
protected:
  static void SetUpTestSuite() { ASSERT_EQ(vips_init("tests"), 0); }

  void check(const std::vector<Row> &rows) {
    for (const Row &row : rows) {
      SCOPED_TRACE(row.name);
      for (std::size_t i = 0; i < kOptionSets; ++i) {
        SCOPED_TRACE("option set " + std::to_string(i + 1));
        checkProcessing(row, kOptions.at(i), row.fates.at(i));
      }
      checkThumbnail(row);
    }
  }

private:
  void checkProcessing(const Row &row, const ImagingOptions &options, const Fate &fate) {
    const test::TemporaryFolder folder;
    const auto file = folder.write(row.name, row.bytes);
    SystemFileSystem files;
    const auto result =
        ImagePipeline::process(file, options, Seconds(90), {.decoder = pool_, .files = files});
    EXPECT_THAT(result.note.value_or(""), HasSubstr(fate.note));
    ASSERT_EQ(result.processed, fate.processed) << result.note.value_or("");
    const auto name = result.finalURL.filename().string();
    if (!fate.processed) {
      EXPECT_THAT(folder.names(), testing::ElementsAre(row.name));
      EXPECT_TRUE(folder.read(name) == row.bytes) << "the file is not the one that was sent";
      return;
    }
    if (options.keepOriginal) {
      EXPECT_TRUE(folder.read("originals/" + row.name) == row.bytes);
    }
    checkResult(result.finalURL, options);
    if (fate.check != nullptr)
      fate.check(folder.read(name));
  }

  void checkResult(const fs::path &file, const ImagingOptions &options) {
    const auto facts = pool_.facts(file);
    ASSERT_TRUE(facts) << facts.error().detail;
    EXPECT_EQ(pool_.headerFacts(file)->width, facts->width);
    EXPECT_LE(std::max(*facts->width, *facts->height), options.maxPixels.value_or(20'000));
    EXPECT_LE(static_cast<std::int64_t>(fs::file_size(file)), options.maxBytes.value_or(1 << 30));
    EXPECT_FALSE(facts->hasLocation && (options.stripLocation || options.stripAllMetadata));
    EXPECT_FALSE(facts->hasMetadata && options.stripAllMetadata);
    EXPECT_EQ(facts->orientation.value_or(kUpright), kUpright);
    const bool isHEIC = options.format == OutputFormat::heic && pool_.canEncodeHEIC();
    EXPECT_TRUE(options.format == OutputFormat::keep ||
                facts->type == (isHEIC ? PictureType::heic : PictureType::jpeg));
  }

  void checkThumbnail(const Row &row) {
    const test::TemporaryFolder folder;
    const auto thumbnail = pool_.thumbnail(folder.write(row.name, row.bytes), 200, 0.9);
    ASSERT_EQ(thumbnail.has_value(), row.shown.has_value());
    EXPECT_EQ(pool_.processCount(), 1U) << "the file ended the process";
    if (!thumbnail)
      return;
    constexpr double kTolerance = 12;
    const auto image = VImage::new_from_buffer(*thumbnail, "");
    const auto colour = image.getpoint(image.width() / 2, image.height() / 2);
    for (std::size_t band = 0; band < row.shown->size(); ++band)
      EXPECT_NEAR(colour.at(band), row.shown->at(band), kTolerance) << "band " << band;
  }

  DecoderPool pool_{{.program = IMAGING_PROGRAM}};
};

TEST_F(ForeignFilesTest, ProcessesOrdinaryPictures) { check(ordinaryRows()); }
TEST_F(ForeignFilesTest, KeepsRawPhotosAndShowsTheirPreview) { check(rawRows()); }
TEST_F(ForeignFilesTest, KeepsFilesWithSeveralPictures) { check(sequenceRows()); }
TEST_F(ForeignFilesTest, KeepsPicturesThatTheOutputCannotRepresent) { check(sampleRows()); }
TEST_F(ForeignFilesTest, ProcessesIrregularJpegFiles) { check(irregularJpegRows()); }
TEST_F(ForeignFilesTest, KeepsCompanionsOrNamesLostOnes) { check(companionRows()); }

} // namespace
} // namespace fennick
