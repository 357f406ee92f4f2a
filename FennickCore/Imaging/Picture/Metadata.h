#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

// What a picture says beyond its pixels: read, changed, written and looked for again. Pure functions; one
// thread at a time, because the XMP reader underneath has state.
namespace fennick::picture {

// Raw blocks; empty: the picture has none.
struct Metadata {
  std::string exif{}; // a TIFF structure, without "Exif\0\0"
  std::string xmp{};  // the main packet
  std::string iptc{}; // IIM data sets, without Photoshop's wrapping
  std::string icc{};

  // Read and never written: what did not fit into a JPEG's main packet, and blocks of a kind behind its
  // first.
  std::string extendedXMP{};
  std::vector<std::string> furtherExif{};
  std::vector<std::string> furtherXMP{};

  bool operator==(const Metadata &) const = default;
};

// Damaged parts are left out, and of packed parts what is larger than 4 MB or, together, than 16 MB.
[[nodiscard]] Metadata readMetadata(Bytes file, PictureType type);

[[nodiscard]] bool hasLocation(const Metadata &metadata); // GPS or named places
[[nodiscard]] bool hasMetadata(const Metadata &metadata); // anything but a colour profile

struct MetadataChange {
  std::int64_t width = 0; // of the picture that is written, in pixels
  std::int64_t height = 0;
  bool stripLocation = false;
  bool stripAll = false; // leaves only the colour profile
  CompanionLengths companions{};
};

// What to write with an upright re-encoding: orientation 1, its dimensions, no previews. Blocks that need no
// change are copied; a cut-off colour profile is left out; XMP that cannot be read is left out when location
// has to go.
[[nodiscard]] Metadata prepare(const Metadata &metadata, const MetadataChange &change);

// The same with the IPTC data sets as XMP properties, for formats that have no place for IPTC.
[[nodiscard]] Metadata withIptcInXmp(const Metadata &metadata);

// `bytes` (a JPEG or PNG without metadata of its own) with the blocks inserted. A PNG takes no IPTC: see
// withIptcInXmp. A block that does not fit into a JPEG is left out rather than the picture lost: EXIF beyond
// 64 KB that is as large without the maker's notes, XMP beyond that even when it is written anew without
// padding, IPTC beyond that, a profile beyond 16 MB. `unencodable`: neither a JPEG nor a PNG.
[[nodiscard]] std::expected<std::string, PictureFault> writeInto(Bytes bytes, const Metadata &metadata);

// Whether a written file is free of what had to go, as two readers see it: Exiv2 and the one here. Any doubt,
// such as a file that one of them cannot read or bytes behind its end, is a no.
[[nodiscard]] bool proveRemoved(Bytes written, PictureType type, bool stripLocation, bool stripAll);

} // namespace fennick::picture
