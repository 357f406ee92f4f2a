#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/MetadataXmp.h"
#include "FennickCore/Imaging/PictureDecoder.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <cstdint>
#include <expected>
#include <string>
#include <vector>

// Reads, changes, writes and verifies the metadata of pictures. Pure functions; one thread at a time, because
// the XMP reader has state.
namespace fennick::picture {

// Raw blocks; empty: the picture has none.
struct Metadata {
  std::string exif{}; // a TIFF structure, without "Exif\0\0"
  std::string xmp{};  // the main packet
  std::string iptc{}; // IIM data sets, without Photoshop's wrapping
  std::string icc{};

  // Read but never written: what did not fit into a JPEG's main packet, and further blocks of a kind after
  // its first.
  std::string extendedXMP{};
  std::vector<std::string> furtherExif{};
  std::vector<std::string> furtherXMP{};

  bool operator==(const Metadata &) const = default;
};

// Skips damaged parts, and compressed parts larger than 4 MB or, together, 16 MB.
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

// Returns whether a written file is free of what had to be removed, according to two readers: Exiv2 and the
// one here. Any doubt, such as a file that one of them cannot read or bytes behind its end, returns false.
[[nodiscard]] bool proveRemoved(Bytes written, PictureType type, bool stripLocation, bool stripAll);

} // namespace fennick::picture
