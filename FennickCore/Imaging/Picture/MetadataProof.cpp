#include "FennickCore/Imaging/Picture/MetadataProof.h"

#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/Picture/ExifBlock.h"
#include "FennickCore/Imaging/Picture/Exiv2Versions.h"
#include "FennickCore/Imaging/Picture/HeifFile.h"
#include "FennickCore/Imaging/Picture/JpegCompanions.h"
#include "FennickCore/Imaging/Picture/Leftovers.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataExiv2.h"
#include "FennickCore/Imaging/Picture/MetadataIptc.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"

#include <algorithm>
#include <array>

// Searches a written file for what had to be removed.
namespace fennick::picture {

using namespace std::string_view_literals;

namespace {

// Segments that may occur in a written JPEG besides those for its pixels: the blocks.
bool isExpectedSegment(const JpegSegment &segment, std::string_view file, bool stripAll) {
  const std::string_view payload = segment.payload(file);
  const bool isBlock =
      segment.marker == kAPP13 ||
      (segment.marker == kAPP1 && (payload.starts_with(kExifPrefix) || payload.starts_with(kXMPPrefix)));
  const bool isDirectory = segment.marker == kAPP2 && announcesGainMap(payload);
  return isBlock || isDirectory ? !stripAll : isNeededForPixels(segment, file);
}

// A second block of a kind, or bytes between the segments, would be read by some programs and not by others.
bool isCleanJpeg(std::string_view file, bool stripAll) {
  const auto segments = jpegSegments(file);
  const auto count = [&](std::string_view prefix) {
    return std::ranges::count_if(segments, [&](const JpegSegment &segment) {
      return segment.marker != kAPP2 && segment.payload(file).starts_with(prefix);
    });
  };
  return count(kExifPrefix) <= 1 && count(kXMPPrefix) <= 1 && count("Photoshop"sv) <= 1 &&
         isGapless(segments, file) && jpegEnd(file) == file.size() &&
         std::ranges::all_of(segments, [&](const JpegSegment &segment) {
           return isExpectedSegment(segment, file, stripAll);
         });
}

bool isCleanPng(std::string_view file, bool stripAll) {
  const auto chunks = pngChunks(file);
  if (chunks.empty() || chunks.back().type != "IEND"sv || chunks.back().end != file.size())
    return false;
  const auto isText = [](const Chunk &chunk) {
    return chunk.type == "tEXt"sv || chunk.type == "zTXt"sv || chunk.type == "iTXt"sv;
  };
  const auto isExif = [](const Chunk &chunk) { return chunk.type == "eXIf"sv; };
  const std::ptrdiff_t most = stripAll ? 0 : 1; // the one text is the XMP packet
  return std::ranges::count_if(chunks, isText) <= most && std::ranges::count_if(chunks, isExif) <= most;
}

bool isCleanHeif(std::string_view file, bool stripAll) {
  const auto heif = HeifFile::parse(file);
  const std::ptrdiff_t most = stripAll ? 0 : 1;
  return heif && std::ranges::count(heif->items, "Exif"sv, &HeifItem::type) <= most &&
         std::ranges::count(heif->items, "mime"sv, &HeifItem::type) <= most;
}

bool saysPlace(const Exiv2::Exifdatum &datum) {
  return datum.groupName() == "GPSInfo" || datum.key() == "Exif.Image.GPSTag" ||
         datum.groupName() == "Thumbnail";
}

bool isCleanForExiv2(Bytes file, bool stripAll) {
  const auto isClean = guarded([&]() -> std::optional<bool> {
    const auto image = openedImage(file);
    const auto &exif = image->exifData();
    const auto &xmp = image->xmpData();
    const auto &iptc = image->iptcData();
    if (stripAll)
      return exif.empty() && xmp.empty() && iptc.empty();
    const Exiv2::DataBuf sets = Exiv2::IptcParser::encode(iptc);
    return std::ranges::none_of(exif, saysPlace) &&
           std::ranges::none_of(xmp, [](const auto &d) { return xmpKeyNamesPlace(d.key()); }) &&
           !iptcHasLocation(textOf(sets));
  });
  return isClean.value_or(false);
}

// The picture, its gain map directly after it and its video up to the end of the file. leftovers() searches
// them for locations.
bool isCleanJpegFile(std::string_view file, bool stripAll) {
  const auto end = jpegEnd(file);
  if (!end || !isCleanJpeg(file.substr(0, *end), stripAll))
    return false;
  if (*end == file.size())
    return true;
  const JpegCompanions companions = jpegCompanions(file);
  std::size_t at = *end;
  if (companions.gainMap) {
    const std::string_view gainMap = file.substr(companions.gainMap->at, companions.gainMap->length);
    if (companions.gainMap->at != at || !isCleanJpeg(gainMap, stripAll) ||
        !isCleanForExiv2(bytesOf(gainMap), stripAll))
      return false;
    at += gainMap.size();
  }
  return !stripAll && (companions.video ? companions.trailerAt == at : at == file.size());
}

bool isCleanContainer(std::string_view file, PictureType type, bool stripAll) {
  switch (type) {
  case PictureType::jpeg:
    return isCleanJpegFile(file, stripAll);
  case PictureType::png:
    return isCleanPng(file, stripAll);
  case PictureType::heic:
  case PictureType::heif:
  case PictureType::avif:
    return isCleanHeif(file, stripAll);
  default:
    return false; // never written
  }
}

bool hasPreview(const Metadata &metadata) {
  const auto exif = ExifBlock::parse(metadata.exif);
  return exif && exif->hasThumbnail();
}

} // namespace

bool proveRemoved(Bytes written, PictureType type, Removal removal) {
  const bool stripAll = removal == Removal::allMetadata;
  const Metadata found = readMetadata(written, type);
  const Leftovers others = leftovers(written, type);
  return !others.location && !(stripAll && others.any) && !hasLocation(found) && !hasPreview(found) &&
         !(stripAll && hasMetadata(found)) && isCleanContainer(textOf(written), type, stripAll) &&
         isCleanForExiv2(written, stripAll);
}

} // namespace fennick::picture
