#include "FennickCore/Imaging/Picture/Rendering.h"

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/Companions.h"
#include "FennickCore/Imaging/Picture/HeifCodec.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataProof.h"
#include "FennickCore/Imaging/Picture/MetadataWriter.h"
#include "FennickCore/Imaging/Picture/PictureReading.h"
#include "FennickCore/Imaging/Picture/Raster.h"
#include "FennickCore/Imaging/Picture/SizeSearch.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace fennick::picture {

namespace {

using vips::VImage;

std::unexpected<PictureError> fail(PictureFault fault, std::string detail) {
  return std::unexpected(PictureError{.fault = fault, .detail = std::move(detail)});
}

std::int64_t longEdge(const VImage &image) { return std::max(image.width(), image.height()); }

// Converts `image` to colours and depth that `output` can store, in memory, with the least harm: transparency
// becomes white, 16 bits become 8, gray becomes RGB for HEIC.
VImage fit(const VImage &image, PictureType output) {
  VImage result = inOrdinaryColours(image);
  if (output == PictureType::png)
    return result.copy_memory();
  result = in8Bits(result);
  if (output == PictureType::jpeg)
    return withoutTransparency(result).copy_memory();
  return (result.bands() < 3 ? inSRGB(result) : result).copy_memory();
}

// Encodes one picture repeatedly and decodes it once.
class Encoding {
public:
  Encoding(VImage image, Metadata metadata, const RenderRequest &request, Companions &companions)
      : image_(std::move(image)), metadata_(std::move(metadata)), request_(request), companions_(companions) {
    metadata_.icc = colourProfile(image_);
  }

  // Returns a complete file of at most `edge` pixels; empty if the encoder or a block refuses.
  [[nodiscard]] std::string at(std::int64_t edge, double quality) {
    if (!current_ || longEdge(*current_) != edge)
      current_ = reduced(image_, edge);
    const VImage &image = *current_;
    companions_.resize(edge);
    const Metadata blocks = prepare(metadata_, {.width = image.width(),
                                                .height = image.height(),
                                                .stripLocation = request_.stripLocation,
                                                .stripAll = request_.stripAllMetadata,
                                                .companions = companions_.lengths()});
    const auto *pixels = static_cast<const unsigned char *>(image.data());
    switch (request_.output) {
    case PictureType::heic:
      return encodeHeic(pixels, image.width(), image.height(), image.bands(), quality, withIptcInXmp(blocks));
    case PictureType::png:
      return written(encodedPng(image), withIptcInXmp(blocks));
    default:
      return accompanied(
          written(encodeJpeg(pixels, image.width(), image.height(), image.bands(), quality), blocks), edge,
          quality);
    }
  }

  // Returns and forgets the first encoding that met the limit only without its companions.
  struct Fit {
    std::int64_t edge = 0;
    double quality = 0;
  };
  [[nodiscard]] std::optional<Fit> takeFitAlone() { return std::exchange(fitsAlone_, std::nullopt); }

  [[nodiscard]] std::int64_t fullEdge() const { return longEdge(image_); }

private:
  [[nodiscard]] static std::string encodedPng(const VImage &image) {
    const std::unique_ptr<VipsBlob, void (*)(VipsBlob *)> blob(
        image.pngsave_buffer(VImage::option()->set("strip", true)),
        [](VipsBlob *held) { ::vips_area_unref(VIPS_AREA(held)); });
    std::size_t size = 0;
    const auto *data = static_cast<const char *>(::vips_blob_get(blob.get(), &size));
    return {data, size};
  }

  static std::string written(const std::string &file, const Metadata &blocks) {
    auto whole = writeInto(bytesOf(file), blocks);
    return whole ? std::move(*whole) : std::string();
  }

  std::string accompanied(std::string picture, std::int64_t edge, double quality) {
    if (picture.empty())
      return picture;
    const bool fitsAlone = request_.maxBytes && std::ssize(picture) <= *request_.maxBytes;
    picture = companions_.withGainMapBehind(std::move(picture)) + companions_.trailer();
    if (!fitsAlone_ && fitsAlone && std::ssize(picture) > *request_.maxBytes)
      fitsAlone_ = Fit{edge, quality};
    return picture;
  }

  VImage image_;
  Metadata metadata_;
  const RenderRequest &request_;
  Companions &companions_;
  std::optional<Fit> fitsAlone_;
  std::optional<VImage> current_; // image_ at the latest size
};

// Companions may cost the photo quality but no pixels: before that they are dropped one by one. One encoding
// is kept for each, so that there are never more encodings than for a photo without companions.
std::optional<Rendering> searchWithCompanions(Encoding &encoding, Companions &companions,
                                              RenderRequest request, const Elapsed &elapsed) {
  std::int64_t edge = encoding.fullEdge();
  int encodes = 0;
  const auto encodeAt = [&](std::int64_t tried, double quality) {
    ++encodes;
    return encoding.at(tried, quality);
  };
  const auto search = [&] {
    return searchSize(edge, request, encodeAt, elapsed, kMostEncodes - encodes - companions.count());
  };
  auto result = search();
  while (result) {
    const auto fit = encoding.takeFitAlone();
    const bool isShort = !result->withinMaxBytes || (fit && result->longEdge < fit->edge);
    if (!fit || !isShort || !companions.dropOne())
      break;
    edge = fit->edge;
    request.quality = fit->quality;
    result = search();
  }
  if (result) {
    result->losesVideo = companions.losesVideo();
    result->losesGainMap = companions.losesGainMap();
  }
  return result;
}

PictureResult<Rendering> rendered(Bytes file, PictureType type, const RenderRequest &request,
                                  std::int64_t storedEdge, const Elapsed &elapsed) {
  DecodedPicture decoded = decodePicture(file, type, request.longEdge, Damage::refuse);
  const VImage image = fit(upright(reduced(decoded.image, request.longEdge), decoded.turn), request.output);
  decoded.image = VImage(); // frees its memory
  Companions companions(file, type, request, storedEdge, decoded.turn);
  Encoding encoding(image, readMetadata(file, type), request, companions);
  auto result = searchWithCompanions(encoding, companions, request, elapsed);
  if (!result)
    return fail(PictureFault::unencodable, "the encoder gave nothing");
  const auto removal = request.stripAllMetadata ? Removal::allMetadata : Removal::location;
  if ((request.stripLocation || request.stripAllMetadata) &&
      !proveRemoved(bytesOf(result->bytes), request.output, removal))
    return fail(PictureFault::unencodable, "metadata that had to go is still there");
  return std::move(*result);
}

} // namespace

PictureResult<Rendering> render(Bytes file, const RenderRequest &request) {
  const auto started = std::chrono::steady_clock::now();
  const auto facts = readFacts(file, Depth::header);
  if (!facts)
    return std::unexpected(facts.error());
  if (!ImageLimits::check(facts->width, facts->height) || request.longEdge < 1)
    return fail(PictureFault::undecodable, "oversized");
  if (isRaw(facts->type) || facts->frames != 1 || facts->fidelity != Fidelity::faithful)
    return fail(PictureFault::unsupported, "a new encoding cannot show the same");
  try {
    return rendered(file, facts->type, request, std::max(*facts->width, *facts->height),
                    [started] { return std::chrono::steady_clock::now() - started; });
  } catch (const vips::VError &error) {
    return fail(PictureFault::undecodable, error.what());
  } catch (const std::bad_alloc &) {
    return fail(PictureFault::undecodable, "out of memory");
  }
}

} // namespace fennick::picture
