#include "FennickCore/Imaging/Picture/Companions.h"

#include "FennickCore/Imaging/ImageLimits.h"
#include "FennickCore/Imaging/Picture/EmbeddedVideo.h"
#include "FennickCore/Imaging/Picture/JpegCodec.h"
#include "FennickCore/Imaging/Picture/MetadataWriter.h"
#include "FennickCore/Imaging/Picture/Raster.h"

#include <algorithm>
#include <cmath>

namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

constexpr double kGainMapQuality = 0.9; // errors appear as changes of brightness
// the limit for results of the imaging process is twice this
constexpr std::size_t kMostTrailer = 256UZ << 20;

// After the box that declares the file itself as a picture.
constexpr std::size_t kOwnType = 8;

bool hasHeifGainMap(std::string_view file) {
  const auto heif = HeifFile::parse(file);
  return heif &&
         (std::ranges::find(heif->items, "tmap"sv, &HeifItem::type) != heif->items.end() ||
          std::ranges::any_of(heif->properties, [&](const HeifBox &property) {
            return property.type == "auxC"sv &&
                   file.substr(property.payloadAt, property.end - property.payloadAt).find("hdrgainmap"sv) !=
                       std::string_view::npos;
          }));
}

} // namespace

Companions::Companions(Bytes file, PictureType type, const RenderRequest &request, std::int64_t longEdge,
                       std::int64_t turn)
    : file_(file), stripLocation_(request.stripLocation), longEdge_(longEdge), turn_(turn) {
  const std::string_view text = textOf(file);
  if (type != PictureType::jpeg) {
    const bool isHeif = type == PictureType::heic || type == PictureType::heif || type == PictureType::avif;
    hadVideo_ = isHeif && findVideo(text, kOwnType).has_value();
    hadGainMap_ = isHeif && hasHeifGainMap(text);
    return;
  }
  const JpegCompanions found = jpegCompanions(text);
  hadVideo_ = found.video.has_value();
  hadGainMap_ = found.gainMap.has_value();
  if (request.output != PictureType::jpeg || request.stripAllMetadata)
    return;
  gainMapAt_ = found.gainMap.value_or(HeifStretch());
  const auto most = static_cast<std::size_t>(
      std::clamp<std::int64_t>(request.maxBytes.value_or(kMostTrailer), 0, kMostTrailer));
  if (found.video && text.size() - found.trailerAt < most)
    trailer_ = stripLocation_ ? cleanVideoTrailer(text, found) : videoTrailer(text, found);
}

bool Companions::dropOne() {
  if (!trailer_.bytes.empty()) {
    trailer_ = {};
    return true;
  }
  const bool had = gainMapAt_.length > 0;
  gainMapAt_ = {};
  gainMap_.clear();
  return had;
}

void Companions::resize(std::int64_t edge) {
  if (gainMapAt_.length == 0 || gainMapEdge_ == edge)
    return;
  gainMapEdge_ = edge;
  gainMap_ = encodedGainMap(edge);
  if (gainMap_.empty())
    gainMapAt_ = {};
}

std::string Companions::encodedGainMap(std::int64_t edge) const {
  const Bytes stored = file_.subspan(gainMapAt_.at, gainMapAt_.length);
  const auto size = jpegSize(stored);
  if (!size || !ImageLimits::check(size->width, size->height))
    return {};
  try {
    const DecodedPicture decoded =
        decodePicture(stored, PictureType::jpeg, ImageLimits::kMaxSide, Damage::refuse);
    const auto storedEdge = std::max(decoded.image.width(), decoded.image.height());
    const double scale = static_cast<double>(edge) / static_cast<double>(longEdge_);
    const auto wanted = std::max<std::int64_t>(std::lround(storedEdge * std::min(scale, 1.0)), 1);
    const vips::VImage image = upright(reduced(decoded.image, wanted), turn_).copy_memory();
    if (image.bands() != 1 && image.bands() != 3)
      return {};
    const Metadata own = readMetadata(stored, PictureType::jpeg);
    const Metadata blocks =
        prepare({.xmp = own.xmp, .icc = own.icc}, {.width = image.width(),
                                                   .height = image.height(),
                                                   .stripLocation = stripLocation_,
                                                   .companions = {.gainMap = gainMapAt_.length}});
    const std::string bare = encodeJpeg(static_cast<const unsigned char *>(image.data()), image.width(),
                                        image.height(), image.bands(), kGainMapQuality);
    auto written = writeInto(bytesOf(bare), blocks);
    return written ? withIsoGainMapBlock(std::move(*written), isoGainMapBlock(textOf(stored)))
                   : std::string();
  } catch (const vips::VError &) {
    return {};
  }
}

CompanionLengths Companions::lengths() const {
  return {
      .gainMap = gainMap_.size(), .gap = trailer_.videoAt, .video = trailer_.bytes.size() - trailer_.videoAt};
}

std::string Companions::withGainMapBehind(std::string picture) const {
  if (gainMap_.empty() || picture.empty())
    return picture;
  return withGainMap(withIsoGainMapBlock(std::move(picture), isoGainMapBlock(textOf(file_))), gainMap_);
}

} // namespace fennick::picture
