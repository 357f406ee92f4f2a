#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/PictureTypes.h"

#include <string>
#include <vector>

// Reads the metadata of pictures; MetadataWriter.h writes and MetadataProof.h verifies it. Pure functions;
// one thread at a time, because the XMP reader has state.
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

} // namespace fennick::picture
