#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <expected>
#include <string>

// What a picture says beyond its pixels: read, changed, written and looked for again. Pure functions; one
// thread at a time, because the XMP reader underneath has state.
namespace fennick::picture {

// Raw blocks; empty: the picture has none.
struct Metadata {
  std::string exif; // a TIFF structure, without "Exif\0\0"
  std::string xmp;  // the main packet
  std::string iptc; // IIM data sets, without Photoshop's wrapping
  std::string icc;

  std::string extendedXMP; // what did not fit into a JPEG's main packet; is read and never written

  bool operator==(const Metadata &) const = default;
};

// Damaged parts are left out.
[[nodiscard]] Metadata readMetadata(Bytes file, PictureType type);

[[nodiscard]] bool hasLocation(const Metadata &metadata); // GPS or named places
[[nodiscard]] bool hasMetadata(const Metadata &metadata); // anything but a colour profile

struct MetadataChange {
  std::int64_t width = 0; // of the picture that is written, in pixels
  std::int64_t height = 0;
  bool stripLocation = false;
  bool stripAll = false; // leaves only the colour profile
};

// What to write with an upright re-encoding: orientation 1, its dimensions, no previews. Blocks that need no
// change are copied; a cut-off colour profile is left out; XMP that cannot be read is left out when location
// has to go.
[[nodiscard]] Metadata prepare(const Metadata &metadata, const MetadataChange &change);

// The same with the IPTC data sets as XMP properties, for formats that have no place for IPTC.
[[nodiscard]] Metadata withIptcInXmp(const Metadata &metadata);

// `bytes` (a JPEG or PNG without metadata of its own) with the blocks inserted. A PNG takes no IPTC: see
// withIptcInXmp. `unencodable`: not such a file, or a block that does not fit; an EXIF block beyond the 64 KB
// of a JPEG segment is first tried without the maker's notes.
[[nodiscard]] std::expected<std::string, PictureFault> writeInto(Bytes bytes, const Metadata &metadata);

// Whether a written file is free of what had to go, as two readers see it: Exiv2 and the one here. Any doubt,
// such as a file that one of them cannot read or bytes behind its end, is a no.
[[nodiscard]] bool proveRemoved(Bytes written, PictureType type, bool stripLocation, bool stripAll);

} // namespace fennick::picture
