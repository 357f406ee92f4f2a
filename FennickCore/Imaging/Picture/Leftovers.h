#pragma once

#include "FennickCore/Imaging/Picture/Bytes.h"
#include "FennickCore/Imaging/Picture/Containers.h"
#include "FennickCore/Imaging/PictureTypes.h"

// What a file holds beyond its pixels and their colours, by the structure of the file alone: comments, texts,
// vendors' blocks, previews, further pictures, videos and bytes behind the end. Pure functions; one thread at
// a time.
namespace fennick::picture {

struct Leftovers {
  bool any = false;      // something of the kind, EXIF, XMP and IPTC included
  bool location = false; // part of it may give a position or name a place

  void add(bool mayHaveLocation) {
    any = true;
    location = location || mayHaveLocation;
  }
};

// For JPEG, PNG, WebP, HEIC, HEIF and AVIF; of GIF only the location, of TIFF only whether there is a GPS
// directory, of raw nothing: what those say is in Metadata. EXIF, XMP and IPTC that Metadata has read do not
// count as location here.
[[nodiscard]] Leftovers leftovers(Bytes file, PictureType type);

// What a JPEG needs to be shown: its header, its colour profile, Adobe's colour transform, tables and the
// frame.
[[nodiscard]] bool isNeededForPixels(const JpegSegment &segment, std::string_view file);

} // namespace fennick::picture
