#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/PictureTypes.h"

// Finds what a file contains besides its pixels and their colours, by the structure of the file alone:
// comments, texts, vendors' blocks, previews, further pictures, videos and bytes behind the end. Pure
// functions; one thread at a time.
namespace fennick::picture {

struct Leftovers {
  bool any = false;      // something of the kind, EXIF, XMP and IPTC included
  bool location = false; // part of it may contain a position or the name of a place

  void add(bool mayHaveLocation) {
    any = true;
    location = location || mayHaveLocation;
  }
};

// Complete for JPEG, PNG, WebP, HEIC, HEIF and AVIF; for GIF only the location, for TIFF only whether there
// is a GPS directory, for raw nothing, since Metadata covers those. EXIF, XMP and IPTC that Metadata has read
// do not count as location here.
[[nodiscard]] Leftovers leftovers(Bytes file, PictureType type);

// Returns whether a JPEG needs the segment to be displayed: its header, colour profile, Adobe's colour
// transform, tables and the frame.
[[nodiscard]] bool isNeededForPixels(const JpegSegment &segment, std::string_view file);

} // namespace fennick::picture
