#pragma once

#include "FennickCore/Imaging/Picture/HeifFile.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The parts that follow the main picture in a JPEG file: the gain map of an HDR photo, the video of a motion
// photo. Pure functions; any thread.
namespace fennick::picture {

struct JpegCompanions {
  std::optional<HeifStretch> gainMap{}; // a JPEG file of its own
  std::optional<HeifStretch> video{};
  std::size_t trailerAt = 0;     // where the bytes begin that the video must keep around it
  bool isSamsungTrailer = false; // ended by a directory of blocks, of which the video is one
};

// Finds both by their content, whatever XMP and the multi-picture directory claim.
[[nodiscard]] JpegCompanions jpegCompanions(std::string_view file);

// The bytes with the video that are appended to a new encoding, and the position of the video in them.
struct VideoTrailer {
  std::string bytes{};
  std::size_t videoAt = 0;
};
// Returns them as in `file`; empty if there is no video.
[[nodiscard]] VideoTrailer videoTrailer(std::string_view file, const JpegCompanions &companions);
// Returns only the video without its location; empty if there is no video or a location may remain in it.
[[nodiscard]] VideoTrailer cleanVideoTrailer(std::string_view file, const JpegCompanions &companions);

// Returns the gain map's metadata in the form of ISO 21496-1 from the main picture; empty if there is none.
[[nodiscard]] std::string isoGainMapBlock(std::string_view jpeg);

// Inserts `block`, unless it is empty, behind the other blocks of `jpeg`.
[[nodiscard]] std::string withIsoGainMapBlock(std::string jpeg, std::string_view block);

// Returns `picture`, a JPEG, with `gainMap` announced in a multi-picture directory and appended. Returns an
// empty text if the two are too large for the directory.
[[nodiscard]] std::string withGainMap(std::string picture, std::string_view gainMap);

// Returns whether a segment's payload is a multi-picture directory or announces a gain map.
[[nodiscard]] bool announcesGainMap(std::string_view payload);

} // namespace fennick::picture
