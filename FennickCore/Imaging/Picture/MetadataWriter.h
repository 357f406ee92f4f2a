#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/Metadata.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"
#include "FennickCore/Imaging/PictureDecoder.h"

#include <cstdint>
#include <expected>
#include <string>

// Updates metadata for a new encoding and inserts it. Pure functions; one thread at a time, because the XMP
// reader has state.
namespace fennick::picture {

struct MetadataChange {
  std::int64_t width = 0; // of the picture that is written, in pixels
  std::int64_t height = 0;
  bool stripLocation = false;
  bool stripAll = false; // leaves only the colour profile
  CompanionLengths companions{};
};

// Returns what to write with an upright re-encoding: orientation 1, its dimensions, no previews. Blocks that
// need no change are copied; a truncated colour profile is left out; XMP that cannot be read is left out if
// location has to be removed.
[[nodiscard]] Metadata prepare(const Metadata &metadata, const MetadataChange &change);

// Returns the same with the IPTC data sets as XMP properties, for formats without IPTC.
[[nodiscard]] Metadata withIptcInXmp(const Metadata &metadata);

// Returns `bytes` (a JPEG or PNG without metadata of its own) with the blocks inserted. PNG has no IPTC: see
// withIptcInXmp. A block that does not fit into a JPEG is left out: EXIF of more than 64 KB even without the
// maker's notes, XMP beyond that even without padding, IPTC beyond that, a profile of more than 16 MB. Fails
// with `unencodable` for other formats.
[[nodiscard]] std::expected<std::string, PictureFault> writeInto(Bytes bytes, const Metadata &metadata);

} // namespace fennick::picture
